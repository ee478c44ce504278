import QtQuick
import QtQuick.Layouts
import Tallyglass

/// A coloured box that asks for attention: a symbol, a title, a body, and what can be done.
Rectangle {
    id: root

    required property string symbol
    required property color symbolColor
    required property string title
    required property string body
    default property alias actions: actionColumn.data

    implicitHeight: content.implicitHeight + 2 * Theme.spaceMedium
    radius: Theme.cornerRadius
    Accessible.role: Accessible.Notification
    Accessible.name: title

    RowLayout {
        id: content

        anchors.fill: parent
        anchors.margins: Theme.spaceMedium
        spacing: Theme.spaceSmall

        SymbolIcon {
            Layout.alignment: Qt.AlignTop
            Layout.preferredWidth: Theme.symbolSize
            Layout.preferredHeight: Theme.symbolSize
            Layout.topMargin: 1
            name: root.symbol
            color: root.symbolColor
        }

        ColumnLayout {
            spacing: Theme.spaceXSmall

            Text {
                Layout.fillWidth: true
                text: root.title
                textFormat: Text.PlainText
                color: Theme.text
                font.pixelSize: Theme.bodySize
                font.weight: Font.DemiBold
                wrapMode: Text.Wrap
            }

            Text {
                Layout.fillWidth: true
                text: root.body
                textFormat: Text.PlainText
                color: Theme.secondaryText
                font.pixelSize: Theme.captionSize
                wrapMode: Text.Wrap
            }

            ColumnLayout {
                id: actionColumn

                Layout.topMargin: Theme.spaceXSmall
                spacing: Theme.spaceSmall
            }
        }
    }
}
