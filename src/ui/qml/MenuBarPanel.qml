pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Tallyglass

/// Everything that the window at the menu-bar icon shows.
Rectangle {
    id: root

    required property PanelViewModel viewModel

    signal settingsRequested
    signal quitRequested

    implicitWidth: 360
    implicitHeight: column.implicitHeight + 2 * Theme.spaceLarge
    color: Theme.background

    ColumnLayout {
        id: column

        anchors.fill: parent
        anchors.margins: Theme.spaceLarge
        spacing: Theme.spaceMedium

        Repeater {
            model: root.viewModel.providerRows

            Text {
                required property providerRow modelData

                objectName: "providerRow"
                text: modelData.name + " " + modelData.usedText + " " + modelData.tokensText
                color: Theme.text
                font.pixelSize: Theme.bodySize
            }
        }
    }
}
