import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Tallyglass

/// A button with a text, and a symbol before it if one is named.
T.Button {
    id: root

    property string symbol
    property bool prominent: false // the one thing to do here
    readonly property color ink: prominent ? Theme.accentText : Theme.text

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: Theme.controlHeight
    leftPadding: Theme.spaceMedium
    rightPadding: Theme.spaceMedium
    hoverEnabled: true // Not every platform says so by itself.
    opacity: enabled ? 1 : 0.5
    Accessible.name: text

    background: Rectangle {
        radius: 6
        color: root.prominent ? Theme.accent : root.down ? Theme.controlPressedFill : root.hovered ? Theme.controlHoverFill : Theme.controlFill
        border.width: root.visualFocus ? 2 : 1
        border.color: root.visualFocus ? Theme.focus : Theme.separator

        Rectangle {
            anchors.fill: parent
            radius: parent.radius
            visible: root.prominent && (root.down || root.hovered)
            color: root.down ? Theme.controlPressedFill : Theme.controlHoverFill
        }
    }

    contentItem: RowLayout {
        spacing: Theme.spaceXSmall + 2

        SymbolIcon {
            visible: root.symbol !== ""
            name: root.symbol
            color: root.ink
        }

        Text {
            text: root.text
            color: root.ink
            font.pixelSize: Theme.bodySize
        }
    }
}
