import QtQuick
import Halcyra

// The push button of every screen. A disabled button draws at half opacity and ignores presses.
Item {
    id: button
    property string title
    property string style: "primary" // "primary", "destructive" or "secondary"
    property bool isDisabled: false
    property string symbol
    signal action()

    readonly property color labelColor: style === "secondary" ? Theme.accent : "white"
    readonly property color fillColor: style === "primary" ? Theme.brandBlue
                                     : style === "destructive" ? Theme.red
                                     : Theme.withAlpha(Theme.accent, 0.1)

    implicitWidth: Math.max(label.implicitWidth + (symbol.length > 0 ? 22 : 0) + 36, 80)
    implicitHeight: 34
    opacity: isDisabled ? 0.5 : 1.0
    activeFocusOnTab: !isDisabled

    Accessible.role: Accessible.Button
    Accessible.name: title
    Accessible.onPressAction: press()

    function press() {
        if (!isDisabled) action()
    }

    Keys.onReturnPressed: press()
    Keys.onSpacePressed: press()

    Rectangle {
        anchors.fill: parent
        radius: 9
        color: button.fillColor
        border.width: button.activeFocus ? 2 : 0
        border.color: Theme.withAlpha(Theme.accent, 0.5)

        // Hover lightens, a press darkens; both stay subtle as on the platform.
        Rectangle {
            anchors.fill: parent
            radius: parent.radius
            color: mouse.pressed ? Qt.rgba(0, 0, 0, 0.12) : Qt.rgba(1, 1, 1, 0.12)
            visible: !button.isDisabled && (mouse.pressed || mouse.containsMouse)
        }
    }

    Row {
        anchors.centerIn: parent
        spacing: 6
        SymbolIcon {
            anchors.verticalCenter: parent.verticalCenter
            visible: button.symbol.length > 0
            symbol: button.symbol
            color: button.labelColor
            size: 14
        }
        Text {
            id: label
            anchors.verticalCenter: parent.verticalCenter
            text: button.title
            color: button.labelColor
            font.pixelSize: Theme.bodySize
            font.weight: Font.DemiBold
        }
    }

    MouseArea {
        id: mouse
        anchors.fill: parent
        hoverEnabled: true
        enabled: !button.isDisabled
        cursorShape: button.isDisabled ? Qt.ArrowCursor : Qt.PointingHandCursor
        onClicked: button.press()
    }
}
