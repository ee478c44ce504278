import QtQuick
import QtQuick.Templates as T
import Tallyglass

/// What a pointer that rests on something is told.
T.ToolTip {
    id: root

    x: Math.round((parent.width - implicitWidth) / 2)
    y: parent.height + Theme.spaceXSmall
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    delay: 600
    leftPadding: Theme.spaceSmall
    rightPadding: Theme.spaceSmall
    topPadding: Theme.spaceXSmall
    bottomPadding: Theme.spaceXSmall
    margins: Theme.spaceXSmall

    background: Rectangle {
        radius: 4
        color: Theme.hintFill
        border.color: Theme.separator
    }

    contentItem: Text {
        text: root.text
        color: Theme.text
        font.pixelSize: Theme.captionSize
    }
}
