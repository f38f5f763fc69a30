import QtQuick
import QtQuick.Layouts
import Halcyra
import Halcyra.Env

// The disk analyzer. The page follows the view model's phase alone; a change of page
// cross-fades. The view model outlives this screen, so a finished scan is still here on return.
Item {
    id: analyzerView
    readonly property string phase: DiskAnalyzerViewModel.phase

    ScreenHeader {
        id: header
        anchors.left: parent.left
        anchors.top: parent.top
        anchors.margins: 28
        anchors.topMargin: 22
        title: Strings.diskAnalyzer.title
        subtitle: Strings.diskAnalyzer.subtitle
    }

    Loader {
        id: pageLoader
        objectName: "analyzerPage"
        anchors.top: header.bottom
        anchors.topMargin: 12
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        sourceComponent: analyzerView.phase === "idle" ? idlePage
                       : analyzerView.phase === "scanning" ? scanningPage
                       : analyzerView.phase === "results" ? resultPage
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
        DiskAnalyzerIdleView {
            folderTargets: DiskAnalyzerViewModel.folderTargets
            onScanPath: path => DiskAnalyzerViewModel.scan(path, DiskAnalyzerService, DebugLogger)
            onScanFolder: folder => DiskAnalyzerViewModel.scanFolder(folder, DiskAnalyzerService, DebugLogger)
        }
    }
    Component {
        id: scanningPage
        DiskAnalyzerScanningView { status: DiskAnalyzerViewModel.scanStatus }
    }
    Component {
        id: resultPage
        DiskAnalyzerResultView {
            objectName: "analyzerResult"
            onBack: DiskAnalyzerViewModel.reset()
            onRescan: DiskAnalyzerViewModel.rescan(DiskAnalyzerService, DebugLogger)
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
                anchors.topMargin: 24
                spacing: 16
                ErrorBanner {
                    Layout.fillWidth: true
                    message: DiskAnalyzerViewModel.errorText
                    onRetry: DiskAnalyzerViewModel.rescan(DiskAnalyzerService, DebugLogger)
                }
                ActionButton {
                    title: qsTr("Done")
                    style: "secondary"
                    onAction: DiskAnalyzerViewModel.reset()
                }
            }
        }
    }

    ConfirmationDialog {
        objectName: "analyzerConfirmation"
        shown: DiskAnalyzerViewModel.isConfirmingDelete
        title: Strings.diskAnalyzer.confirmDeleteTitle
        message: Strings.diskAnalyzer.confirmDeleteMessage
        confirmTitle: Strings.diskAnalyzer.remove
        onConfirm: DiskAnalyzerViewModel.confirmDelete(AppState, DebugLogger)
        onCancel: DiskAnalyzerViewModel.cancelDelete()
    }
}
