import QtQuick
import Tallyglass

/// What is left, and the tokens in and out, in one line that shrinks a little where it must.
Item {
    id: root

    required property string remainingText // empty: not shown
    required property string inputText
    required property string outputText
    property real spacing: Theme.spaceSmall

    implicitWidth: line.implicitWidth
    implicitHeight: line.implicitHeight

    Row {
        id: line

        anchors.verticalCenter: parent.verticalCenter
        scale: Math.max(0.65, Math.min(1, root.width / implicitWidth))
        spacing: root.spacing
        transformOrigin: Item.Left

        Repeater {
            model: [root.remainingText, root.inputText, root.outputText]

            Text {
                required property string modelData

                color: Theme.secondaryText
                font.pixelSize: Theme.captionSize
                maximumLineCount: 1
                text: modelData
                visible: modelData !== ""
            }
        }
    }
}
