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

    readonly property real symbolSize: Math.round(bodySize * 1.2)
    readonly property real smallSymbolSize: Math.round(bodySize)

    readonly property bool isDark: system.window.hslLightness < 0.5
    readonly property color background: system.window
    readonly property color text: system.windowText
    readonly property color secondaryText: Qt.alpha(text, 0.75)
    readonly property color tertiaryText: Qt.alpha(text, 0.68)
    readonly property color good: isDark ? "#6cd39b" : "#1b7344"
    readonly property color warning: isDark ? "#f0a35c" : "#9a4d00"
    readonly property color bad: isDark ? "#ff8a80" : "#b3261e"
    readonly property color hintFill: isDark ? Qt.lighter(background, 1.5) : Qt.lighter(background, 1.1)
    readonly property color segmentFill: isDark ? Qt.alpha("white", 0.2) : "white"
    readonly property color cardFill: isDark ? Qt.alpha("white", 0.05) : Qt.alpha("white", 0.6)
    readonly property color fieldFill: system.base
    readonly property color controlBorder: Qt.alpha(text, 0.3)
    readonly property color switchTrack: Qt.alpha(text, 0.3)
    readonly property color focus: isDark ? Qt.lighter(accent, 1.4) : accent
    readonly property color separator: Qt.alpha(text, 0.12)
    readonly property color controlFill: Qt.alpha(text, 0.07)
    readonly property color controlHoverFill: Qt.alpha(text, 0.12)
    readonly property color controlPressedFill: Qt.alpha(text, 0.18)
    // The ring of a countdown, and the fills of notices, are the same in light and dark.
    readonly property color resetTint: Qt.rgba(0.58, 0.42, 0.78, 1)
    readonly property color updateFill: Qt.rgba(0.18, 0.58, 0.46, 0.12)
    readonly property color warningFill: Qt.rgba(0.86, 0.48, 0.16, 0.12)
    readonly property color accent: system.highlight
    readonly property color accentText: system.highlightedText

    readonly property SystemPalette system: SystemPalette {}
    readonly property Text systemText: Text {}
}
