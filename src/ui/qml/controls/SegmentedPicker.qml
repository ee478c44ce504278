pragma ComponentBehavior: Bound

import QtQuick
import Tallyglass

/// A choice of one of a few short labels. One stop for the keyboard; the arrow keys choose.
FocusScope {
    id: root

    required property list<string> labels
    required property int currentIndex
    property string name

    signal chosen(int index)

    implicitWidth: segments.implicitWidth + 4
    implicitHeight: Theme.controlHeight
    activeFocusOnTab: true
    Accessible.role: Accessible.Grouping
    Accessible.name: name
    Keys.onLeftPressed: chosen(Math.max(currentIndex - 1, 0))
    Keys.onRightPressed: chosen(Math.min(currentIndex + 1, labels.length - 1))

    Rectangle {
        anchors.fill: parent
        radius: 7
        color: Theme.controlFill
        border.width: root.activeFocus ? 2 : 0
        border.color: Theme.focus
    }

    Row {
        id: segments

        x: 2
        height: root.height

        Repeater {
            model: root.labels

            Item {
                id: segment

                required property int index
                required property string modelData
                readonly property bool isCurrent: index === root.currentIndex

                implicitWidth: Math.max(Theme.bodySize * 3, label.implicitWidth + Theme.spaceLarge)
                width: Math.max(implicitWidth, (root.width - 4) / root.labels.length)
                height: segments.height
                Accessible.role: Accessible.RadioButton
                Accessible.name: modelData
                Accessible.checkable: true
                Accessible.checked: isCurrent
                Accessible.onPressAction: root.chosen(index)

                Rectangle {
                    anchors.fill: parent
                    anchors.topMargin: 2
                    anchors.bottomMargin: 2
                    radius: 5
                    visible: segment.isCurrent || pointer.hovered
                    color: segment.isCurrent ? Theme.segmentFill : Theme.controlFill
                    border.width: segment.isCurrent ? 1 : 0
                    border.color: Theme.separator
                }

                Text {
                    id: label

                    anchors.centerIn: parent
                    text: segment.modelData
                    color: segment.isCurrent ? Theme.text : Theme.secondaryText
                    font.pixelSize: Theme.bodySize
                    font.weight: segment.isCurrent ? Font.DemiBold : Font.Normal
                    Accessible.ignored: true
                }

                HoverHandler {
                    id: pointer
                }

                TapHandler {
                    onTapped: root.chosen(segment.index)
                }
            }
        }
    }
}
