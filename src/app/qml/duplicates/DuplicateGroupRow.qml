import QtQuick
import QtQuick.Layouts
import Halcyra

// One group in the result's sidebar: its file's symbol and name, the number of copies and
// what its marked copies take.
Rectangle {
    id: row
    required property string groupId
    required property string name
    required property string icon
    required property int copies
    required property string wastedText
    property bool isActive: false
    signal picked()

    implicitHeight: 48
    radius: 8
    color: isActive ? Theme.withAlpha(Theme.accent, 0.14)
         : mouse.containsMouse ? Qt.rgba(0, 0, 0, 0.04) : "transparent"

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: 10
        anchors.rightMargin: 10
        spacing: 10
        SymbolIcon {
            symbol: row.icon
            color: row.isActive ? Theme.accent : Theme.secondaryText
            size: 20
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 1
            Text {
                Layout.fillWidth: true
                text: row.name
                color: Theme.primaryText
                font.pixelSize: Theme.bodySize
                font.weight: Font.DemiBold
                elide: Text.ElideMiddle
            }
            Text {
                text: qsTr("%1 copies").arg(row.copies)
                color: Theme.secondaryText
                font.pixelSize: Theme.captionSize
            }
        }
        Text {
            text: row.wastedText
            color: Theme.primaryText
            font.pixelSize: Theme.captionSize + 1
            font.weight: Font.DemiBold
        }
    }

    MouseArea {
        id: mouse
        anchors.fill: parent
        hoverEnabled: true
        cursorShape: Qt.PointingHandCursor
        onClicked: row.picked()
    }
}
