import QtQuick
import Tallyglass

/// The panel in its window: with a border, the keys that every window has, and scrolled where the
/// screen is too low for it.
Rectangle {
    id: root

    required property MenuBarExtra extra
    required property PanelViewModel viewModel
    property real largestHeight: 10000

    implicitWidth: panel.implicitWidth + 2
    implicitHeight: Math.min(panel.implicitHeight + 2, largestHeight)
    color: Theme.background

    ScrolledPage {
        anchors.fill: parent
        anchors.margins: 1
        contentHeight: panel.implicitHeight

        MenuBarPanel {
            id: panel

            width: root.width - 2
            viewModel: root.viewModel
            onSettingsRequested: root.extra.openSettings()
            onQuitRequested: root.extra.quit()
        }
    }

    Rectangle {
        anchors.fill: parent
        radius: root.radius
        color: "transparent"
        border.color: Theme.separator
    }

    WindowShortcuts {
        extra: root.extra
        onCloseRequested: root.extra.closePanel()
    }
}
