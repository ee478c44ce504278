import QtQuick
import QtQuick.Templates as T
import QtQuick.Window
import Tallyglass

/// Scrolls what is higher than the window, by itself to whatever gets the keyboard's focus.
Flickable {
    id: root

    readonly property Item focused: Window.activeFocusItem

    interactive: contentHeight > height
    boundsBehavior: Flickable.StopAtBounds
    clip: true
    onFocusedChanged: if (focused && interactive)
        reveal(focused)

    function reveal(item) {
        const top = item.mapToItem(contentItem, 0, 0).y - Theme.spaceLarge;
        const bottom = top + item.height + 2 * Theme.spaceLarge;
        contentY = Math.max(0, Math.min(contentHeight - height, top, Math.max(contentY, bottom - height)));
    }

    T.ScrollBar.vertical: T.ScrollBar {
        id: bar

        width: 8
        padding: 2
        policy: root.interactive ? T.ScrollBar.AlwaysOn : T.ScrollBar.AlwaysOff

        contentItem: Rectangle {
            visible: bar.size < 1
            radius: 2
            color: Theme.controlBorder
        }
    }
}
