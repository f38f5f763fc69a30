import QtQuick
import QtQuick.Layouts
import Halcyra
import Halcyra.Env

// What the confirmation is about to remove: the size and count, then one row per section that
// has something selected, sorted by the section's name.
ColumnLayout {
    spacing: 12

    RowLayout {
        Layout.alignment: Qt.AlignHCenter
        spacing: 40
        ColumnLayout {
            spacing: 0
            Text {
                Layout.alignment: Qt.AlignHCenter
                text: CleanViewModel.totalSelectedText
                color: Theme.primaryText
                font.pixelSize: 26
                font.weight: Font.Bold
            }
            Text {
                Layout.alignment: Qt.AlignHCenter
                text: qsTr("to remove")
                color: Theme.secondaryText
                font.pixelSize: Theme.captionSize + 1
            }
        }
        ColumnLayout {
            spacing: 0
            Text {
                Layout.alignment: Qt.AlignHCenter
                text: CleanViewModel.selectedItemCount
                color: Theme.primaryText
                font.pixelSize: 26
                font.weight: Font.Bold
            }
            Text {
                Layout.alignment: Qt.AlignHCenter
                text: qsTr("items")
                color: Theme.secondaryText
                font.pixelSize: Theme.captionSize + 1
            }
        }
    }

    Rectangle {
        Layout.fillWidth: true
        implicitHeight: rows.implicitHeight + 16
        radius: 8
        color: Theme.controlBackground
        visible: CleanViewModel.confirmSections.length > 0
        ColumnLayout {
            id: rows
            anchors.fill: parent
            anchors.margins: 8
            anchors.leftMargin: 12
            anchors.rightMargin: 12
            spacing: 4
            Repeater {
                model: CleanViewModel.confirmSections
                RowLayout {
                    required property var modelData
                    Layout.fillWidth: true
                    spacing: 8
                    Text {
                        text: modelData.name
                        color: Theme.primaryText
                        font.pixelSize: Theme.bodySize - 1
                        font.weight: Font.DemiBold
                    }
                    Text {
                        Layout.fillWidth: true
                        text: modelData.categoryCount + " " + qsTr("categories")
                        color: Theme.secondaryText
                        font.pixelSize: Theme.bodySize - 1
                    }
                    Text {
                        text: modelData.sizeText
                        color: Theme.primaryText
                        font.pixelSize: Theme.bodySize - 1
                    }
                }
            }
        }
    }
}
