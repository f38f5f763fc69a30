import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Halcyra
import Halcyra.Env

// The files to shred: a head with the count, the passes choice and the pickers, the rows with
// their check marks, and a foot with the selected total and the buttons to start over or on.
Item {
    id: view
    property bool isTargeted: false
    signal pickFiles()
    signal pickFolder()

    ColumnLayout {
        anchors.fill: parent
        anchors.leftMargin: 28
        anchors.rightMargin: 28
        anchors.bottomMargin: 20
        spacing: 12

        RowLayout {
            Layout.fillWidth: true
            spacing: 10
            Text {
                objectName: "fileCount"
                text: ShredderViewModel.fileCount + " " + qsTr("files")
                color: Theme.primaryText
                font.pixelSize: Theme.headlineSize
                font.weight: Font.DemiBold
            }
            BusyIndicator {
                Layout.preferredWidth: 18
                Layout.preferredHeight: 18
                visible: ShredderViewModel.isResolving
                running: visible
            }
            Item { Layout.fillWidth: true }
            Text {
                text: qsTr("Overwrite Passes")
                color: Theme.secondaryText
                font.pixelSize: Theme.bodySize
            }
            PassesPicker {
                objectName: "passesPicker"
                value: ShredderViewModel.passes
                onPicked: (passes) => { ShredderViewModel.passes = passes }
            }
            ActionButton {
                Layout.leftMargin: 6
                title: qsTr("Add Files")
                symbol: "plus"
                style: "secondary"
                onAction: view.pickFiles()
            }
            ActionButton {
                title: qsTr("Add Folder")
                symbol: "folder"
                style: "secondary"
                onAction: view.pickFolder()
            }
        }

        Rectangle {
            Layout.fillWidth: true
            Layout.fillHeight: true
            radius: 12
            color: view.isTargeted ? Theme.withAlpha(Theme.accent, 0.06) : Theme.windowBackground
            border.width: view.isTargeted ? 2 : 0.5
            border.color: view.isTargeted ? Theme.accent : Theme.separator
            clip: true

            ListView {
                id: list
                objectName: "shredderFileList"
                anchors.fill: parent
                anchors.margins: 6
                model: ShredderViewModel.filesModel
                spacing: 2
                boundsBehavior: Flickable.StopAtBounds
                ScrollBar.vertical: ScrollBar { policy: ScrollBar.AsNeeded }
                delegate: ShredderFileRow {
                    required property string fileId
                    required property string name
                    required property string path
                    required property string sizeText
                    required property bool isSelected
                    width: ListView.view.width
                    fileName: name
                    filePath: path
                    fileSize: sizeText
                    checked: isSelected
                    onToggle: ShredderViewModel.toggleFile(fileId)
                    onRemove: ShredderViewModel.removeFile(fileId)
                }
            }
        }

        RowLayout {
            Layout.fillWidth: true
            spacing: 12
            ColumnLayout {
                spacing: 1
                Text {
                    objectName: "totalSize"
                    text: qsTr("Total: ") + ShredderViewModel.totalSizeText
                    color: Theme.primaryText
                    font.pixelSize: Theme.bodySize + 1
                    font.weight: Font.DemiBold
                }
                Text {
                    objectName: "selectedCount"
                    text: ShredderViewModel.selectedCount + " " + qsTr("of") + " " + ShredderViewModel.fileCount
                          + " " + qsTr("selected")
                    color: Theme.secondaryText
                    font.pixelSize: Theme.captionSize + 1
                }
            }
            Item { Layout.fillWidth: true }
            ActionButton {
                title: qsTr("Scan Again")
                style: "secondary"
                onAction: ShredderViewModel.reset()
            }
            ActionButton {
                objectName: "shredFilesButton"
                Layout.preferredWidth: 130
                title: qsTr("Shred Files")
                style: "primary"
                isDisabled: ShredderViewModel.selectedCount < 1
                onAction: ShredderViewModel.requestConfirmation()
            }
        }
    }
}
