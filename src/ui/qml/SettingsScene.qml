import QtQuick
import Tallyglass

/// The settings in their window: scrolled where the screen is too low for them, and with the keys
/// that every window has.
Rectangle {
    id: root

    required property MenuBarExtra extra
    required property SettingsViewModel viewModel

    color: Theme.background

    ScrolledPage {
        objectName: "page"
        anchors.fill: parent
        contentHeight: view.implicitHeight + 2 * view.y

        SettingsView {
            id: view

            x: Theme.spaceLarge
            y: Theme.spaceLarge
            width: root.width - 2 * x
            viewModel: root.viewModel
        }
    }

    WindowShortcuts {
        extra: root.extra
        onCloseRequested: root.extra.closeSettings()
    }
}
