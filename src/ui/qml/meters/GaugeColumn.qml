import QtQuick
import QtQuick.Layouts
import Tallyglass

/// A gauge of a provider's row and its caption.
ColumnLayout {
    id: root

    required property real percent // fraction
    required property string text
    required property color tint
    required property string caption

    spacing: 3

    MiniRingGauge {
        Layout.alignment: Qt.AlignHCenter
        percent: root.percent
        text: root.text
        tint: root.tint
        size: 56
        lineWidth: 5
        name: root.caption
    }

    Text {
        Layout.alignment: Qt.AlignHCenter
        Layout.maximumWidth: 72
        text: root.caption
        color: Theme.tertiaryText
        font.pixelSize: Theme.captionSize
        fontSizeMode: Text.HorizontalFit
        minimumPixelSize: font.pixelSize * 0.7
        maximumLineCount: 1
        Accessible.ignored: true
    }
}
