import QtQuick
import QtQuick.Dialogs
import QtQuick.Layouts
import Halcyra
import Halcyra.Env

// The shredder. The page follows the view model's phase alone; a change of page cross-fades.
// Files come in through the pickers or by dropping them anywhere on the idle page or the list.
Item {
    id: shredderView
    objectName: "shredderView"
    readonly property string phase: ShredderViewModel.phase
    readonly property string page: phase === "preview" || phase === "confirming" ? "list" : phase
    readonly property bool acceptsFiles: page === "idle" || page === "list"

    // Where the pickers were opened from decides their wording.
    function pickFiles(fromList) {
        filePicker.title = fromList ? qsTr("Choose more files to shred") : qsTr("Choose files or folders to securely shred")
        filePicker.acceptLabel = fromList ? qsTr("Add") : qsTr("Shred")
        filePicker.open()
    }
    function pickFolder(fromList) {
        folderPicker.title = fromList ? qsTr("Choose more files to shred") : qsTr("Choose files or folders to securely shred")
        folderPicker.acceptLabel = fromList ? qsTr("Add") : qsTr("Shred")
        folderPicker.open()
    }

    ScreenHeader {
        id: header
        anchors.left: parent.left
        anchors.top: parent.top
        anchors.margins: 28
        anchors.topMargin: 22
        title: qsTr("Shredder")
        subtitle: qsTr("Securely delete files beyond recovery")
    }

    DropArea {
        id: dropArea
        objectName: "shredderDropArea"
        anchors.fill: pageLoader
        enabled: shredderView.acceptsFiles
        onEntered: (drag) => { drag.accepted = drag.hasUrls }
        onDropped: (drop) => {
            if (!drop.hasUrls) return
            ShredderViewModel.addFiles(drop.urls, ShredderService)
            drop.acceptProposedAction()
        }
    }

    Loader {
        id: pageLoader
        objectName: "shredderPage"
        anchors.top: header.bottom
        anchors.topMargin: 12
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        sourceComponent: shredderView.page === "idle" ? idlePage
                       : shredderView.page === "list" ? listPage
                       : shredderView.page === "shredding" ? progressPage
                       : shredderView.page === "summary" ? summaryPage
                       : errorPage
        onLoaded: fadeIn.restart()
        NumberAnimation {
            id: fadeIn
            target: pageLoader.item
            property: "opacity"
            from: 0; to: 1
            duration: Theme.ms(400)
            easing.type: Easing.InOutQuad
        }
    }

    Component {
        id: idlePage
        ShredderIdleView {
            isTargeted: dropArea.containsDrag
            isResolving: ShredderViewModel.isResolving
            onPickFiles: shredderView.pickFiles(false)
            onPickFolder: shredderView.pickFolder(false)
        }
    }
    Component {
        id: listPage
        ShredderFileListView {
            isTargeted: dropArea.containsDrag
            onPickFiles: shredderView.pickFiles(true)
            onPickFolder: shredderView.pickFolder(true)
        }
    }
    Component {
        id: progressPage
        ShredderProgressView {
            message: ShredderViewModel.progressMessage
            fraction: ShredderViewModel.progressFraction
        }
    }
    Component {
        id: summaryPage
        ShredderSummaryView {
            destroyedText: ShredderViewModel.destroyedText
            filesShredded: ShredderViewModel.filesShredded
            passes: ShredderViewModel.resultPasses
            onShredMore: ShredderViewModel.reset()
            onDone: ShredderViewModel.finish(AppState)
        }
    }
    Component {
        id: errorPage
        Item {
            ColumnLayout {
                anchors.left: parent.left
                anchors.right: parent.right
                anchors.top: parent.top
                anchors.leftMargin: 28
                anchors.rightMargin: 28
                anchors.topMargin: 16
                spacing: 16
                ErrorBanner {
                    Layout.fillWidth: true
                    message: ShredderViewModel.errorText
                    onRetry: ShredderViewModel.retry()
                }
                ActionButton {
                    title: qsTr("Done")
                    style: "secondary"
                    onAction: ShredderViewModel.reset()
                }
            }
        }
    }

    ConfirmationDialog {
        objectName: "shredderConfirmation"
        shown: shredderView.phase === "confirming"
        title: qsTr("Confirm Secure Deletion")
        message: qsTr("Files will be overwritten with random data and permanently destroyed. This action cannot be undone.")
        confirmTitle: qsTr("Shred Now")
        detail: ShredderConfirmDetail {}
        onConfirm: ShredderViewModel.confirmShred(ShredderService, DebugLogger)
        onCancel: ShredderViewModel.cancelConfirmation()
    }

    FileDialog {
        id: filePicker
        objectName: "shredderFileDialog"
        fileMode: FileDialog.OpenFiles
        onAccepted: ShredderViewModel.addFiles(selectedFiles, ShredderService)
    }
    FolderDialog {
        id: folderPicker
        objectName: "shredderFolderDialog"
        onAccepted: ShredderViewModel.addFiles([selectedFolder], ShredderService)
    }
}
