import QtQuick
import QtQuick.Layouts
import Halcyra
import Halcyra.Env

// The startup items manager. The page follows the view model's phase alone; a change of page
// cross-fades. The view model outlives this screen, so a result is still here on return.
Item {
    id: startupView
    readonly property string phase: StartupItemsViewModel.phase

    // The results carry the title in their own top bar.
    ScreenHeader {
        id: header
        visible: startupView.phase !== "results"
        anchors.left: parent.left
        anchors.top: parent.top
        anchors.margins: 28
        anchors.topMargin: 22
        title: qsTr("Startup Items")
        subtitle: qsTr("Manage apps and services that launch at startup")
    }

    Loader {
        id: pageLoader
        objectName: "startupPage"
        anchors.top: header.visible ? header.bottom : parent.top
        anchors.topMargin: header.visible ? 12 : 0
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        sourceComponent: startupView.phase === "idle" ? idlePage
                       : startupView.phase === "scanning" ? scanningPage
                       : startupView.phase === "results" ? resultPage
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
        StartupItemsIdleView {
            onScan: StartupItemsViewModel.scan(StartupItemsService, DebugLogger)
        }
    }
    Component {
        id: scanningPage
        StartupItemsScanningView { scanStatus: StartupItemsViewModel.scanStatus }
    }
    Component {
        id: resultPage
        StartupItemsResultView {
            objectName: "startupResult"
            onBack: StartupItemsViewModel.reset()
            onRescan: StartupItemsViewModel.rescan(StartupItemsService, DebugLogger)
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
                    message: StartupItemsViewModel.errorText
                    onRetry: StartupItemsViewModel.rescan(StartupItemsService, DebugLogger)
                }
                ActionButton {
                    title: Strings.clean.done
                    style: "secondary"
                    onAction: StartupItemsViewModel.reset()
                }
            }
        }
    }
}
