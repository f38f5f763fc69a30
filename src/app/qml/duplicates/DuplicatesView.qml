import QtQuick
import QtQuick.Layouts
import Halcyra
import Halcyra.Env

// The duplicate finder. The page follows the view model's phase alone; a change of page
// cross-fades. The view model outlives this screen, so a result is still here on return.
Item {
    id: duplicatesView
    readonly property string phase: DuplicatesViewModel.phase
    readonly property string page: phase === "preview" || phase === "confirming" ? "result"
                                 : phase === "executing" ? "progress"
                                 : phase

    // The last folder again, from a clean slate; nothing when no folder was scanned yet.
    function rescan() {
        DuplicatesViewModel.rescan(DuplicateFileService, DebugLogger)
    }

    Loader {
        id: pageLoader
        objectName: "duplicatesPage"
        anchors.fill: parent
        sourceComponent: duplicatesView.page === "idle" ? idlePage
                       : duplicatesView.page === "scanning" ? scanningPage
                       : duplicatesView.page === "result" ? resultPage
                       : duplicatesView.page === "progress" ? progressPage
                       : duplicatesView.page === "summary" ? summaryPage
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
        DuplicatesIdleView {
            noDuplicatesFound: DuplicatesViewModel.noDuplicatesFound
            folderTargets: DuplicatesViewModel.folderTargets
            onScanPath: path => DuplicatesViewModel.scan(path, DuplicateFileService, DebugLogger)
            onScanFolder: folder => DuplicatesViewModel.scanFolder(folder, DuplicateFileService, DebugLogger)
        }
    }
    Component {
        id: scanningPage
        DuplicatesScanningView { status: DuplicatesViewModel.scanStatus }
    }
    Component {
        id: resultPage
        DuplicatesResultView {
            objectName: "duplicatesResult"
            onBack: DuplicatesViewModel.reset()
            onRescan: duplicatesView.rescan()
        }
    }
    Component {
        id: progressPage
        CleanProgressView { status: DuplicatesViewModel.scanStatus }
    }
    Component {
        id: summaryPage
        DuplicatesSummaryView {
            freedText: DuplicatesViewModel.freedText
            filesDeleted: DuplicatesViewModel.filesDeleted
            onScanAgain: duplicatesView.rescan()
            onDone: DuplicatesViewModel.finish(AppState)
        }
    }
    Component {
        id: errorPage
        Item {
            ColumnLayout {
                anchors.left: parent.left
                anchors.right: parent.right
                anchors.top: parent.top
                anchors.margins: 28
                spacing: 16
                ErrorBanner {
                    Layout.fillWidth: true
                    message: DuplicatesViewModel.errorText
                    onRetry: duplicatesView.rescan()
                }
                ActionButton {
                    title: Strings.clean.scanAgain
                    style: "secondary"
                    onAction: DuplicatesViewModel.reset()
                }
            }
        }
    }

    ConfirmationDialog {
        objectName: "duplicatesConfirmation"
        shown: duplicatesView.phase === "confirming"
        title: Strings.duplicates.confirmTitle
        message: Strings.duplicates.confirmMessage
        confirmTitle: Strings.duplicates.confirmButton
        detail: DuplicatesConfirmDetail {}
        onConfirm: DuplicatesViewModel.confirmDelete(DuplicateFileService, AppState, DebugLogger)
        onCancel: DuplicatesViewModel.cancelConfirmation()
    }
}
