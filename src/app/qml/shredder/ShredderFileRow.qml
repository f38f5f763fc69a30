import QtQuick
import QtQuick.Layouts
import Halcyra

// One file of the list: its check mark, a document symbol, name and folder, size, and a button
// that takes it off the list. A hovered row is highlighted.
Rectangle {
    id: row
    property string fileName
    property string filePath
    property string fileSize
    property bool checked: true
    signal toggle()
    signal remove()

    height: 48
    radius: 8
    color: hover.hovered ? Qt.rgba(0, 0, 0, 0.04) : "transparent"
    Accessible.role: Accessible.ListItem
    Accessible.name: fileName

    HoverHandler { id: hover }

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: 10
        anchors.rightMargin: 10
        spacing: 10

        Item {
            implicitWidth: 20
            implicitHeight: 20
            SymbolIcon {
                anchors.centerIn: parent
                symbol: row.checked ? "checkmark.circle.fill" : "circle"
                color: row.checked ? Theme.accent : Theme.tertiaryText
                size: 18
            }
            MouseArea {
                anchors.fill: parent
                anchors.margins: -4
                cursorShape: Qt.PointingHandCursor
                onClicked: row.toggle()
            }
            Accessible.role: Accessible.CheckBox
            Accessible.checked: row.checked
            Accessible.name: row.fileName
            Accessible.onToggleAction: row.toggle()
        }
        SymbolIcon {
            symbol: "doc"
            color: Theme.secondaryText
            size: 20
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 1
            Text {
                Layout.fillWidth: true
                text: row.fileName
                color: row.checked ? Theme.primaryText : Theme.secondaryText
                font.pixelSize: Theme.bodySize
                font.weight: Font.Medium
                elide: Text.ElideMiddle
            }
            Text {
                Layout.fillWidth: true
                text: row.filePath
                color: Theme.tertiaryText
                font.pixelSize: Theme.captionSize
                elide: Text.ElideMiddle
            }
        }
        Text {
            text: row.fileSize
            color: Theme.secondaryText
            font.pixelSize: Theme.bodySize - 1
            font.weight: Font.Medium
        }
        Item {
            implicitWidth: 20
            implicitHeight: 20
            SymbolIcon {
                anchors.centerIn: parent
                symbol: "minus.circle.fill"
                color: removeMouse.containsMouse ? Theme.red : Theme.tertiaryText
                size: 16
            }
            MouseArea {
                id: removeMouse
                anchors.fill: parent
                anchors.margins: -4
                hoverEnabled: true
                cursorShape: Qt.PointingHandCursor
                onClicked: row.remove()
            }
            Accessible.role: Accessible.Button
            Accessible.name: qsTr("Remove")
            Accessible.onPressAction: row.remove()
        }
    }
}
