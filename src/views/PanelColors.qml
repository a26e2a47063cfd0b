import QtQuick

// The desktop's colours, light or dark, and what the panel derives from them.
QtObject {
    id: root

    readonly property SystemPalette palette: SystemPalette {
        colorGroup: SystemPalette.Active
    }
    readonly property bool isDark: root.palette.window.hslLightness < 0.5

    readonly property color background: root.palette.window
    readonly property color card: root.isDark ? Qt.lighter(root.palette.window, 1.18) : root.palette.base
    readonly property color line: Qt.alpha(root.palette.windowText, 0.14)
    readonly property color text: root.palette.windowText
    readonly property color secondaryText: Qt.alpha(root.palette.windowText, 0.68)
    readonly property color quietText: Qt.alpha(root.palette.windowText, 0.56)
    readonly property color accent: root.isDark ? Qt.lighter(root.palette.highlight, 1.4) : Qt.darker(root.palette.highlight, 1.5)
    readonly property color accentBackground: Qt.alpha(root.accent, 0.15)
    readonly property color noticeBackground: root.isDark ? "#4a3c10" : "#fff1c4"
    readonly property color noticeText: root.isDark ? "#ffe7a0" : "#4d3b00"
}
