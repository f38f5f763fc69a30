import QtQuick
import Halcyra

// A symbol and a text that opens an address in the default browser.
Row {
    id: link
    property string symbol
    property string text
    property string url
    spacing: 5
    Accessible.role: Accessible.Link
    Accessible.name: text

    SymbolIcon { anchors.verticalCenter: parent.verticalCenter; symbol: link.symbol; color: Theme.accent; size: 14 }
    Text {
        anchors.verticalCenter: parent.verticalCenter
        text: link.text
        color: Theme.accent
        font.pixelSize: Theme.bodySize
        font.underline: mouse.containsMouse
        MouseArea {
            id: mouse
            anchors.fill: parent
            hoverEnabled: true
            cursorShape: Qt.PointingHandCursor
            onClicked: Qt.openUrlExternally(link.url)
        }
    }
}
