import QtQuick
import QtQuick.Templates as T
import Tallyglass

T.Slider {
    id: root

    implicitWidth: 200
    implicitHeight: Theme.controlHeight
    snapMode: T.Slider.SnapAlways

    background: Rectangle {
        y: (root.height - height) / 2
        width: root.width
        height: 4
        radius: 2
        color: Theme.switchTrack

        Rectangle {
            width: root.handle.x + root.handle.width / 2
            height: parent.height
            radius: 2
            color: Theme.accent
        }
    }

    handle: Rectangle {
        x: root.visualPosition * (root.width - width)
        y: (root.height - height) / 2
        width: 18
        height: 18
        radius: 9
        color: "white"
        border.width: root.visualFocus ? 2 : 1
        border.color: root.visualFocus ? Theme.focus : Theme.controlBorder
    }
}
