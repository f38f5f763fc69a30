import QtQuick
import QtQuick.Layouts
import Halcyra

// A row of the folder list under the treemap: round check box, symbol, name, share of the
// folder shown, size and a bar of the share. Pressing the row goes one level down.
Rectangle {
    id: row
    required property string nodeId
    required property string name
    required property string sizeText
    required property string shareText
    required property real barWidth
    required property bool hasChildren
    required property bool isPermissionDenied
    required property bool isSelected
    signal toggleSelect()
    signal tap()

    height: 32
    radius: 6
    color: mouse.containsMouse ? Qt.rgba(0, 0, 0, 0.04) : "transparent"
    Accessible.role: Accessible.ListItem
    Accessible.name: name

    MouseArea {
        id: mouse
        anchors.fill: parent
        hoverEnabled: true
        cursorShape: row.hasChildren ? Qt.PointingHandCursor : Qt.ArrowCursor
        onClicked: row.tap()
    }

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: 6
        anchors.rightMargin: 10
        spacing: 8

        Item {
            implicitWidth: 20
            implicitHeight: 20
            SymbolIcon {
                anchors.centerIn: parent
                symbol: row.isSelected ? "checkmark.circle.fill" : "circle"
                color: row.isSelected ? Theme.blue : Theme.gray
                opacity: row.isSelected ? 1 : 0.4
                size: 16
            }
            MouseArea {
                anchors.fill: parent
                cursorShape: Qt.PointingHandCursor
                onClicked: row.toggleSelect()
            }
            Accessible.role: Accessible.CheckBox
            Accessible.checked: row.isSelected
        }
        SymbolIcon {
            symbol: row.hasChildren ? "folder.fill" : "doc.fill"
            color: row.hasChildren ? Theme.accent : Theme.secondaryText
            size: 15
        }
        SymbolIcon {
            visible: row.isPermissionDenied
            symbol: "lock.fill"
            color: Theme.orange
            size: 12
        }
        Text {
            Layout.fillWidth: true
            text: row.name
            color: Theme.primaryText
            font.pixelSize: Theme.bodySize
            elide: Text.ElideMiddle
        }
        Text {
            Layout.preferredWidth: 48
            text: row.shareText
            color: Theme.secondaryText
            font.pixelSize: Theme.captionSize
            horizontalAlignment: Text.AlignRight
        }
        Text {
            Layout.preferredWidth: 70
            text: row.sizeText
            color: Theme.primaryText
            font.pixelSize: Theme.bodySize - 1
            font.weight: Font.Medium
            horizontalAlignment: Text.AlignRight
        }
        Item {
            implicitWidth: 80
            implicitHeight: 6
            Rectangle {
                width: row.barWidth
                height: parent.height
                radius: 3
                color: Theme.withAlpha(Theme.accent, 0.6)
            }
        }
        Item {
            implicitWidth: 12
            implicitHeight: 12
            SymbolIcon {
                anchors.centerIn: parent
                visible: row.hasChildren
                symbol: "chevron.right"
                color: Theme.tertiaryText
                size: 11
            }
        }
    }
}
