import QtQuick
import Tallyglass

/// A small ring with a short text in its middle. To those who hear it, one element: its name and
/// its text.
Item {
    id: root

    required property real percent // fraction
    required property string text
    required property color tint
    required property real size // side of the square
    required property real lineWidth
    required property string name

    implicitWidth: size
    implicitHeight: size

    Accessible.role: Accessible.Graphic
    Accessible.name: name + " " + text

    RingGauge {
        anchors.fill: parent
        percent: root.percent
        tint: root.tint
        lineWidth: root.lineWidth
        trackColor: Theme.text
        trackOpacity: 0.18
    }

    Text {
        objectName: "gaugeText"
        anchors.fill: parent
        anchors.margins: root.lineWidth + 3
        text: root.text
        color: Theme.text
        font.pixelSize: Math.round(Math.max(root.size * 0.23, 9))
        font.weight: Font.DemiBold
        fontSizeMode: Text.HorizontalFit
        minimumPixelSize: font.pixelSize * 0.5
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
        maximumLineCount: 1
        Accessible.ignored: true
    }
}
