import QtQuick
import QtQuick.Layouts
import Tallyglass

/// A sentence that explains; nothing when there is none.
Text {
    visible: text !== ""
    color: Theme.secondaryText
    font.pixelSize: Theme.captionSize
    lineHeight: 1.2
    wrapMode: Text.Wrap
    textFormat: Text.PlainText
    Layout.fillWidth: true
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
