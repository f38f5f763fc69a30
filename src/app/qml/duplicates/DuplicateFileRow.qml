import QtQuick
import QtQuick.Layouts
import Halcyra

// One copy in the detail panel: its mark, name, folder, size and date. A copy that stays
// carries a green "Keep" badge. A click flips the mark, within the group's rule.
Rectangle {
    id: row
    required property string fileId
    required property string name
    required property string folder
    required property string sizeText
    required property string dateText
    required property bool isSelected
    signal toggled()

    implicitHeight: 56
    radius: 10
    color: isSelected ? Theme.withAlpha(Theme.red, 0.05) : Theme.controlBackground
    border.width: 0.5
    border.color: isSelected ? Theme.withAlpha(Theme.red, 0.25) : Theme.separator

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: 12
        anchors.rightMargin: 14
        spacing: 12
        SymbolIcon {
            symbol: row.isSelected ? "checkmark.circle.fill" : "circle"
            color: row.isSelected ? Theme.red : Theme.tertiaryText
            size: 20
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 2
            Item {
                id: nameLine
                Layout.fillWidth: true
                implicitHeight: nameText.implicitHeight
                Text {
                    id: nameText
                    width: Math.min(implicitWidth, nameLine.width - (keepBadge.visible ? keepBadge.width + 6 : 0))
                    text: row.name
                    color: Theme.primaryText
                    font.pixelSize: Theme.bodySize
                    font.weight: Font.DemiBold
                    elide: Text.ElideMiddle
                }
                Rectangle {
                    id: keepBadge
                    anchors.left: nameText.right
                    anchors.leftMargin: 6
                    anchors.verticalCenter: nameText.verticalCenter
                    visible: !row.isSelected
                    width: keepText.implicitWidth + 12
                    height: 16
                    radius: 4
                    color: Theme.withAlpha(Theme.green, 0.15)
                    Text {
                        id: keepText
                        anchors.centerIn: parent
                        text: qsTr("Keep")
                        color: Theme.green
                        font.pixelSize: Theme.captionSize - 1
                        font.weight: Font.Bold
                    }
                }
            }
            Text {
                Layout.fillWidth: true
                text: row.folder
                color: Theme.secondaryText
                font.pixelSize: Theme.captionSize
                elide: Text.ElideMiddle
            }
        }
        ColumnLayout {
            spacing: 2
            Text {
                Layout.alignment: Qt.AlignRight
                text: row.sizeText
                color: Theme.primaryText
                font.pixelSize: Theme.captionSize + 1
                font.weight: Font.DemiBold
            }
            Text {
                Layout.alignment: Qt.AlignRight
                text: row.dateText
                color: Theme.tertiaryText
                font.pixelSize: Theme.captionSize
            }
        }
    }

    MouseArea {
        anchors.fill: parent
        cursorShape: Qt.PointingHandCursor
        onClicked: row.toggled()
    }
}
