import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Halcyra

// A row of the largest files: symbol, name over path, size, and a button that shows the file in
// the file manager. These files are only shown, never marked.
Rectangle {
    id: row
    property string name
    property string path
    property string sizeText
    signal reveal()

    height: 44
    radius: 6
    color: hover.hovered ? Qt.rgba(0, 0, 0, 0.04) : "transparent"
    Accessible.role: Accessible.ListItem
    Accessible.name: name

    HoverHandler { id: hover }

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: 8
        anchors.rightMargin: 8
        spacing: 10
        SymbolIcon {
            symbol: "doc.fill"
            color: Theme.secondaryText
            size: 18
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 1
            Text {
                Layout.fillWidth: true
                text: row.name
                color: Theme.primaryText
                font.pixelSize: Theme.bodySize
                font.weight: Font.Medium
                elide: Text.ElideMiddle
            }
            Text {
                Layout.fillWidth: true
                text: row.path
                color: Theme.tertiaryText
                font.pixelSize: Theme.captionSize
                elide: Text.ElideMiddle
            }
        }
        Text {
            text: row.sizeText
            color: Theme.primaryText
            font.pixelSize: Theme.bodySize - 1
            font.weight: Font.DemiBold
        }
        Item {
            implicitWidth: 24
            implicitHeight: 24
            SymbolIcon {
                anchors.centerIn: parent
                symbol: "arrow.right.circle"
                color: revealMouse.containsMouse ? Theme.accent : Theme.secondaryText
                size: 18
            }
            MouseArea {
                id: revealMouse
                anchors.fill: parent
                hoverEnabled: true
                cursorShape: Qt.PointingHandCursor
                onClicked: row.reveal()
            }
            ToolTip.visible: revealMouse.containsMouse
            ToolTip.delay: 500
            ToolTip.text: Strings.diskAnalyzer.revealInFinder
            Accessible.role: Accessible.Button
            Accessible.name: Strings.diskAnalyzer.revealInFinder
        }
    }
}
