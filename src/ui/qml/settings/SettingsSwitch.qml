import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Tallyglass

/// A switch at the right end of its line, with its label at the left.
T.Switch {
    id: root

    implicitHeight: Math.max(Theme.controlHeight, label.implicitHeight)
    Layout.fillWidth: true
    Accessible.name: text

    indicator: Rectangle {
        x: root.width - width
        y: (root.height - height) / 2
        width: 34
        height: 20
        radius: height / 2
        color: root.checked ? Theme.accent : Theme.switchTrack
        border.width: root.visualFocus ? 2 : 0
        border.color: Theme.focus

        Rectangle {
            x: root.checked ? parent.width - width - 3 : 3
            y: 3
            width: 14
            height: 14
            radius: 7
            color: "white"
        }
    }

    contentItem: Text {
        id: label

        text: root.text
        color: Theme.text
        font.pixelSize: Theme.bodySize
        rightPadding: root.indicator.width + Theme.spaceMedium
        wrapMode: Text.Wrap
        verticalAlignment: Text.AlignVCenter
    }
}
