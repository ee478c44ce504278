import QtQuick
import QtQuick.Templates as T
import Tallyglass

/// A button that is a symbol; its text is told on resting, and to those who hear it.
T.Button {
    id: root

    required property string symbol

    implicitWidth: Theme.controlHeight + 2
    implicitHeight: Theme.controlHeight + 2
    hoverEnabled: true // Not every platform says so by itself.
    opacity: enabled ? 1 : 0.4
    Accessible.name: text

    background: Rectangle {
        radius: 6
        color: root.down ? Theme.controlPressedFill : root.hovered ? Theme.controlHoverFill : "transparent"
        border.width: root.visualFocus ? 2 : 0
        border.color: Theme.focus
    }

    contentItem: Item {
        SymbolIcon {
            anchors.centerIn: parent
            width: Theme.symbolSize
            height: Theme.symbolSize
            name: root.symbol
            color: Theme.text
        }
    }

    Hint {
        text: root.text
        visible: root.hovered
    }
}
