import QtQuick
import QtQuick.Layouts
import Halcyra
import Halcyra.Env

// What the confirmation is about to delete: how many copies, and the space they take.
Rectangle {
    implicitHeight: figures.implicitHeight + 24
    radius: 8
    color: Theme.controlBackground

    RowLayout {
        id: figures
        anchors.centerIn: parent
        spacing: 40
        ColumnLayout {
            spacing: 0
            Text {
                Layout.alignment: Qt.AlignHCenter
                text: DuplicatesViewModel.totalSelectedCount
                color: Theme.primaryText
                font.pixelSize: 26
                font.weight: Font.Bold
            }
            Text {
                Layout.alignment: Qt.AlignHCenter
                text: qsTr("duplicate files")
                color: Theme.secondaryText
                font.pixelSize: Theme.captionSize + 1
            }
        }
        ColumnLayout {
            spacing: 0
            Text {
                Layout.alignment: Qt.AlignHCenter
                text: DuplicatesViewModel.totalWastedText
                color: Theme.red
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
    }
}
