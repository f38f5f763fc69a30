import QtQuick
import QtQuick.Layouts
import Halcyra

// A row of the review sheet's category list: symbol, name and a detail capsule (the size, or
// the reason a skipped category was not scanned).
Rectangle {
    id: row
    property string name
    property string symbol
    property string detail
    property color tint: Theme.accent
    property bool active: false
    property bool skipped: false
    signal picked()

    height: skipped ? 44 : 34
    radius: 7
    color: active ? Theme.withAlpha(tint, 0.15) : mouse.containsMouse ? Qt.rgba(0, 0, 0, 0.04) : "transparent"
    Accessible.role: Accessible.ListItem
    Accessible.name: name

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: 8
        anchors.rightMargin: 8
        spacing: 8
        SymbolIcon {
            symbol: row.symbol.length > 0 ? row.symbol : "folder"
            color: row.skipped ? Theme.orange : row.active ? row.tint : Theme.secondaryText
            size: 15
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 1
            Text {
                Layout.fillWidth: true
                text: row.name
                color: row.skipped ? Theme.orange : Theme.primaryText
                font.pixelSize: Theme.bodySize - 1
                font.weight: row.active ? Font.DemiBold : Font.Normal
                elide: Text.ElideRight
            }
            Text {
                Layout.fillWidth: true
                visible: row.skipped
                text: row.detail
                color: Theme.withAlpha(Theme.orange, 0.85)
                font.pixelSize: Theme.captionSize - 1
                elide: Text.ElideRight
            }
        }
        Rectangle {
            visible: !row.skipped
            implicitWidth: size.implicitWidth + 12
            implicitHeight: 18
            radius: 9
            color: row.active ? row.tint : Qt.rgba(0, 0, 0, 0.06)
            Text {
                id: size
                anchors.centerIn: parent
                text: row.detail
                color: row.active ? "white" : Theme.secondaryText
                font.pixelSize: Theme.captionSize - 1
                font.weight: Font.DemiBold
            }
        }
    }
    MouseArea {
        id: mouse
        anchors.fill: parent
        hoverEnabled: true
        onClicked: row.picked()
    }
}
