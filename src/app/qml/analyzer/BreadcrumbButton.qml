import QtQuick
import Halcyra

// One step of the analyzer's breadcrumb: an optional symbol and a folder name, as a flat button.
Rectangle {
    id: button
    property string title
    property string symbol
    signal picked()

    implicitWidth: content.implicitWidth + 14
    implicitHeight: 24
    radius: 6
    color: mouse.containsMouse ? Theme.withAlpha(Theme.accent, 0.1) : "transparent"
    Accessible.role: Accessible.Button
    Accessible.name: title

    Row {
        id: content
        anchors.centerIn: parent
        spacing: 5
        SymbolIcon {
            anchors.verticalCenter: parent.verticalCenter
            visible: button.symbol.length > 0
            symbol: button.symbol
            color: Theme.accent
            size: 13
        }
        Text {
            anchors.verticalCenter: parent.verticalCenter
            text: button.title
            color: Theme.accent
            font.pixelSize: Theme.bodySize - 1
            font.weight: Font.Medium
        }
    }
    MouseArea {
        id: mouse
        anchors.fill: parent
        hoverEnabled: true
        cursorShape: Qt.PointingHandCursor
        onClicked: button.picked()
    }
}
