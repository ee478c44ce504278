pragma Singleton

import QtQuick

/// Spaces, sizes and colours of everything that is shown. Colours follow the system's palette, and
/// so change with it while the program runs; lengths are in device-independent pixels.
QtObject {
    id: theme

    readonly property int spaceXSmall: 4
    readonly property int spaceSmall: 8
    readonly property int spaceMedium: 12
    readonly property int spaceLarge: 16
    readonly property int cornerRadius: 8
    readonly property int controlHeight: Math.max(24, Math.round(bodySize * 1.9))

    readonly property real bodySize: systemText.fontInfo.pixelSize
    readonly property real titleSize: Math.round(bodySize * 1.15)
    readonly property real captionSize: Math.max(10, Math.round(bodySize * 0.85))

    readonly property bool isDark: system.window.hslLightness < 0.5
    readonly property color background: system.window
    readonly property color text: system.windowText
    readonly property color secondaryText: Qt.alpha(text, 0.75)
    readonly property color tertiaryText: Qt.alpha(text, 0.68)
    readonly property color separator: Qt.alpha(text, 0.12)
    readonly property color controlFill: Qt.alpha(text, 0.07)
    readonly property color controlHoverFill: Qt.alpha(text, 0.12)
    readonly property color controlPressedFill: Qt.alpha(text, 0.18)
    readonly property color accent: system.highlight
    readonly property color accentText: system.highlightedText

    readonly property SystemPalette system: SystemPalette {}
    readonly property Text systemText: Text {}
}
