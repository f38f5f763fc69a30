pragma Singleton
import QtQuick

// Colours, type sizes and timings of every screen. The named colours are the platform's
// light-appearance system colours; brand colours and the sidebar gradient are our own.
QtObject {
    // Renderings of the screens turn motion off, so every picture shows a finished state.
    property bool reduceMotion: false
    function ms(duration) { return reduceMotion ? 0 : duration }

    readonly property color brandBlue: Qt.rgba(0.22, 0.56, 1.0, 1)
    readonly property color brandLight: Qt.rgba(0.45, 0.7, 1.0, 1)
    readonly property color accent: Qt.rgba(0.2, 0.6, 1.0, 1)
    readonly property color selectionStart: Qt.rgba(0.2, 0.6, 1.0, 1)
    readonly property color selectionEnd: Qt.rgba(0.4, 0.5, 0.95, 1)

    readonly property color red: "#FF3B30"
    readonly property color orange: "#FF9500"
    readonly property color green: "#34C759"
    readonly property color mint: "#00C7BE"
    readonly property color teal: "#30B0C7"
    readonly property color cyan: "#32ADE6"
    readonly property color blue: "#007AFF"
    readonly property color indigo: "#5856D6"
    readonly property color purple: "#AF52DE"
    readonly property color pink: "#FF2D55"
    readonly property color gray: "#8E8E93"

    readonly property color primaryText: Qt.rgba(0, 0, 0, 0.85)
    readonly property color secondaryText: Qt.rgba(0, 0, 0, 0.5)
    readonly property color tertiaryText: Qt.rgba(0, 0, 0, 0.3)
    readonly property color windowBackground: "#FFFFFF"
    readonly property color sidebarBackground: "#EEEEF0"
    readonly property color controlBackground: "#F4F4F6"
    readonly property color separator: Qt.rgba(0, 0, 0, 0.1)

    readonly property int titleSize: 22
    readonly property int headlineSize: 15
    readonly property int bodySize: 13
    readonly property int captionSize: 11

    // Accepts a colour or a colour's name ("#30B0C7").
    function withAlpha(colour, alpha) {
        const c = Qt.lighter(colour, 1.0)
        return Qt.rgba(c.r, c.g, c.b, alpha)
    }

    // The colour of a section of the cleaner's results.
    function sectionColor(section) {
        switch (section) {
        case "System": return blue
        case "User": return purple
        case "Browsers": return orange
        case "Developer": return green
        case "Editors": return indigo
        case "Applications": return pink
        case "Cloud & Office": return cyan
        case "Backups": return teal
        case "Virtualization": return mint
        default: return gray
        }
    }
}
