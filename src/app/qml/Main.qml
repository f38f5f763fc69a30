import QtQuick
import QtQuick.Controls
import Halcyra
import Halcyra.Env

// The single window: the menu commands, the content, and the about sheet.
ApplicationWindow {
    id: window
    property bool showAbout: false
    property bool showLicenses: false
    // The self-updater plugs in here; until it does, its menu item stays disabled.
    property bool canCheckForUpdates: false
    signal checkForUpdates()

    width: 1000
    height: 600
    minimumWidth: 1000
    minimumHeight: 600
    visible: true
    title: AppInfo.name
    color: Theme.windowBackground
    font.pixelSize: Theme.bodySize

    menuBar: MenuBar {
        Menu {
            title: AppInfo.name
            Action { text: qsTr("About Halcyra"); onTriggered: window.showAbout = true }
            Action {
                text: qsTr("Check for Updates…")
                enabled: window.canCheckForUpdates
                onTriggered: window.checkForUpdates()
            }
            MenuSeparator {}
            Action { text: qsTr("Quit Halcyra"); shortcut: StandardKey.Quit; onTriggered: Qt.quit() }
        }
        Menu {
            title: qsTr("View")
            Action { text: qsTr("Refresh"); shortcut: "Ctrl+R"; onTriggered: AppState.toggleRefresh() }
        }
        Menu {
            title: qsTr("Help")
            Action { text: qsTr("Halcyra Help"); onTriggered: Qt.openUrlExternally(AppInfo.website) }
            Action { text: qsTr("Contact Support"); onTriggered: Qt.openUrlExternally(AppInfo.contactUrl) }
            Action { text: qsTr("Write a Review"); onTriggered: Qt.openUrlExternally(AppInfo.reviewUrl) }
        }
    }

    ContentView {
        objectName: "contentView"
        anchors.fill: parent
    }

    AboutView {
        objectName: "aboutSheet"
        shown: window.showAbout
        onDone: window.showAbout = false
    }
}
