import QtQuick
import Tallyglass

/// The keys that every window of ours has.
Item {
    id: root

    required property MenuBarExtra extra

    signal closeRequested

    Shortcut {
        sequences: [StandardKey.Cancel, StandardKey.Close]
        onActivated: root.closeRequested()
    }

    Shortcut {
        sequences: [StandardKey.Refresh, "Ctrl+R"]
        onActivated: root.extra.refresh()
    }

    Shortcut {
        sequences: [StandardKey.Preferences, "Ctrl+,"]
        onActivated: root.extra.openSettings()
    }

    Shortcut {
        sequences: [StandardKey.Quit]
        onActivated: root.extra.quit()
    }
}
