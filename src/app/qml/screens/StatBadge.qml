import QtQuick
import Halcyra

// A small capsule with a symbol and a short fact, for the tour's last page.
Rectangle {
    property string symbol
    property string text
    implicitWidth: row.implicitWidth + 24
    implicitHeight: 30
    radius: 15
    color: Theme.withAlpha(Theme.brandBlue, 0.1)
    Row {
        id: row
        anchors.centerIn: parent
        spacing: 6
        SymbolIcon { anchors.verticalCenter: parent.verticalCenter; symbol: parent.parent.symbol; color: Theme.brandBlue; size: 15 }
        Text {
            anchors.verticalCenter: parent.verticalCenter
            text: parent.parent.text
            color: Theme.brandBlue
            font.pixelSize: Theme.bodySize
            font.weight: Font.DemiBold
        }
    }
}
