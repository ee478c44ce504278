import QtQuick
import QtQuick.Layouts
import Tallyglass

/// The program's name, how old the figures are, and what can be done about it.
RowLayout {
    id: root

    required property PanelViewModel viewModel

    signal settingsRequested

    spacing: Theme.spaceXSmall

    SymbolIcon {
        Layout.preferredWidth: Theme.bodySize * 2
        Layout.preferredHeight: Theme.bodySize * 2
        Layout.rightMargin: Theme.spaceXSmall
        name: "gauge.with.dots.needle.67percent"
        color: Theme.text
    }

    ColumnLayout {
        spacing: 0

        Text {
            Layout.fillWidth: true
            text: Texts.text("app.name")
            color: Theme.text
            font.pixelSize: Theme.titleSize
            font.weight: Font.Bold
            elide: Text.ElideRight
        }

        Text {
            objectName: "updated"
            Layout.fillWidth: true
            text: root.viewModel.updatedText
            color: Theme.secondaryText
            font.pixelSize: Theme.captionSize
            elide: Text.ElideRight
        }
    }

    IconButton {
        objectName: "settings"
        symbol: "slider.horizontal.3"
        text: Texts.text("common.settings")
        onClicked: root.settingsRequested()
    }

    IconButton {
        objectName: "checkForUpdates"
        symbol: "arrow.down.circle"
        text: Texts.text("update.check")
        enabled: root.viewModel.canCheckForUpdates
        onClicked: root.viewModel.checkForUpdates()
    }

    IconButton {
        objectName: "refresh"
        symbol: root.viewModel.isRefreshing ? "hourglass" : "arrow.clockwise"
        text: Texts.text("common.refresh")
        onClicked: root.viewModel.refresh()
    }
}
