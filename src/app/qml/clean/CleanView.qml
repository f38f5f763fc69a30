import QtQuick
import QtQuick.Layouts
import Halcyra
import Halcyra.Env

// The cleaner. The page follows the view model's phase alone; a change of page cross-fades.
Item {
    id: cleanView
    readonly property string phase: CleanViewModel.phase
    readonly property string page: phase === "idle" || phase === "scanning" ? "scan"
                                 : phase === "preview" || phase === "confirming" ? "preview"
                                 : phase === "executing" ? "progress"
                                 : phase
    // The dashboard's quick clean and the tour's last page ask for a scan as the cleaner shows.
    Component.onCompleted: CleanViewModel.autoScanIfRequested(NativeCleanService, AppState, DebugLogger)
    // The tour sets the flag just after it has brought the cleaner up.
    Connections {
        target: AppState
        function onShouldAutoScanChanged() {
            CleanViewModel.autoScanIfRequested(NativeCleanService, AppState, DebugLogger)
        }
    }

    ScreenHeader {
        id: header
        anchors.left: parent.left
        anchors.top: parent.top
        anchors.margins: 28
        anchors.topMargin: 22
        title: Strings.clean.title
        subtitle: Strings.clean.subtitle
    }

    Loader {
        id: pageLoader
        objectName: "cleanPage"
        anchors.top: header.bottom
        anchors.topMargin: 12
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        sourceComponent: cleanView.page === "scan" ? scanPage
                       : cleanView.page === "preview" ? previewPage
                       : cleanView.page === "progress" ? progressPage
                       : cleanView.page === "summary" ? summaryPage
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
        id: scanPage
        CleanScanView {
            isScanning: cleanView.phase === "scanning"
            status: CleanViewModel.scanStatus
            onScan: CleanViewModel.scan(NativeCleanService, DebugLogger)
        }
    }
    Component {
        id: previewPage
        CleanPreviewView {
            objectName: "cleanPreview"
            onRescan: CleanViewModel.rescan(NativeCleanService, DebugLogger)
        }
    }
    Component {
        id: progressPage
        CleanProgressView { status: CleanViewModel.scanStatus }
    }
    Component {
        id: summaryPage
        CleanSummaryView {
            freedText: CleanViewModel.freedText
            itemsCleaned: CleanViewModel.itemsCleaned
            onScanAgain: CleanViewModel.rescan(NativeCleanService, DebugLogger)
            onDone: CleanViewModel.finish(AppState)
        }
    }
    Component {
        id: errorPage
        Item {
            ColumnLayout {
                anchors.left: parent.left
                anchors.right: parent.right
                anchors.top: parent.top
                anchors.margins: 24
                spacing: 16
                ErrorBanner {
                    Layout.fillWidth: true
                    message: CleanViewModel.errorText
                    onRetry: CleanViewModel.rescan(NativeCleanService, DebugLogger)
                }
                ActionButton {
                    title: Strings.clean.scanAgain
                    style: "secondary"
                    onAction: CleanViewModel.reset()
                }
            }
        }
    }

    ConfirmationDialog {
        objectName: "cleanConfirmation"
        shown: cleanView.phase === "confirming"
        title: Strings.clean.confirmTitle
        message: Strings.clean.confirmMessage
        confirmTitle: Strings.clean.confirmButton
        detail: CleanConfirmDetail {}
        onConfirm: CleanViewModel.confirmClean(NativeCleanService, AppState, DebugLogger)
        onCancel: CleanViewModel.cancelConfirmation()
    }
}
