import QtQuick
import Halcyra
import Halcyra.Env

// One row per tool, in order. The chosen row has the blue gradient with white symbol and text.
// The updater's row carries a badge with the number of updates from 1 on.
Rectangle {
    id: sidebar
    property int updateCount: 0
    color: Theme.sidebarBackground

    Column {
        anchors.fill: parent
        anchors.topMargin: 14
        anchors.leftMargin: 10
        anchors.rightMargin: 10
        spacing: 2

        Text {
            leftPadding: 10
            bottomPadding: 10
            text: AppInfo.name
            color: Theme.secondaryText
            font.pixelSize: Theme.captionSize
            font.weight: Font.DemiBold
        }

        Repeater {
            model: Navigation
            delegate: Item {
                id: row
                required property string itemId
                required property string title
                required property string icon
                readonly property bool selected: AppState.selectedNavItem === itemId
                readonly property bool showsBadge: itemId === "update" && sidebar.updateCount >= 1

                width: parent.width
                height: 32
                Accessible.role: Accessible.PageTab
                Accessible.name: title
                Accessible.onPressAction: AppState.selectedNavItem = itemId

                Rectangle {
                    anchors.fill: parent
                    radius: 7
                    visible: row.selected
                    gradient: Gradient {
                        orientation: Gradient.Horizontal
                        GradientStop { position: 0.0; color: Theme.selectionStart }
                        GradientStop { position: 1.0; color: Theme.selectionEnd }
                    }
                }
                Rectangle {
                    anchors.fill: parent
                    radius: 7
                    visible: !row.selected && mouse.containsMouse
                    color: Qt.rgba(0, 0, 0, 0.05)
                }
                SymbolIcon {
                    id: symbol
                    anchors.left: parent.left
                    anchors.leftMargin: 10
                    anchors.verticalCenter: parent.verticalCenter
                    symbol: row.icon
                    size: 16
                    color: row.selected ? "white" : Theme.secondaryText
                }
                Text {
                    anchors.left: symbol.right
                    anchors.leftMargin: 9
                    anchors.right: badge.visible ? badge.left : parent.right
                    anchors.rightMargin: 8
                    anchors.verticalCenter: parent.verticalCenter
                    text: row.title
                    elide: Text.ElideRight
                    color: row.selected ? "white" : Theme.primaryText
                    font.pixelSize: Theme.bodySize
                    font.weight: row.selected ? Font.DemiBold : Font.Normal
                }
                Rectangle {
                    id: badge
                    visible: row.showsBadge
                    anchors.right: parent.right
                    anchors.rightMargin: 8
                    anchors.verticalCenter: parent.verticalCenter
                    height: 18
                    width: Math.max(height, count.implicitWidth + 12)
                    radius: height / 2
                    color: row.selected ? Qt.rgba(1, 1, 1, 0.3) : Theme.red
                    Text {
                        id: count
                        anchors.centerIn: parent
                        text: sidebar.updateCount
                        color: "white"
                        font.pixelSize: Theme.captionSize
                        font.weight: Font.Bold
                    }
                }
                MouseArea {
                    id: mouse
                    anchors.fill: parent
                    hoverEnabled: true
                    onClicked: AppState.selectedNavItem = row.itemId
                }
            }
        }
    }
}
