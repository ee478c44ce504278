import QtQuick
import QtQuick.Templates as T
import Tallyglass

/// Takes one budget. Enter, Tab and a click elsewhere store it; Esc brings back what is stored.
T.TextField {
    id: root

    required property BudgetField field

    implicitWidth: 100
    implicitHeight: Theme.controlHeight
    leftPadding: 6
    rightPadding: 6
    horizontalAlignment: Text.AlignRight
    verticalAlignment: Text.AlignVCenter
    text: field.text
    color: Theme.text
    selectionColor: Theme.accent
    selectedTextColor: Theme.accentText
    font.pixelSize: Theme.bodySize
    inputMethodHints: Qt.ImhPreferNumbers
    maximumLength: 24
    selectByMouse: true
    Accessible.name: field.name

    onActiveFocusChanged: if (activeFocus)
        selectAll()
    onEditingFinished: field.enter(text)
    Keys.onShortcutOverride: event => event.accepted = event.key === Qt.Key_Escape && text !== field.text
    Keys.onEscapePressed: field.reload()

    background: Rectangle {
        radius: 5
        color: Theme.fieldFill
        border.width: root.activeFocus ? 2 : 1
        border.color: root.activeFocus ? Theme.focus : Theme.controlBorder
    }
}
