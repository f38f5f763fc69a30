import QtQuick
import QtQuick.Layouts
import Halcyra
import Halcyra.Env

// Settings: a review request and the program's version with the about sheet.
Item {
    id: settings
    // Made anew each time the screen appears.
    property SettingsViewModel viewModel: SettingsViewModel {}

    ColumnLayout {
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.margins: 28
        anchors.topMargin: 22
        spacing: 18

        ScreenHeader { title: Strings.settings.title }

        SettingsGroup {
            Layout.fillWidth: true
            heading: qsTr("Write a Review")
            Text {
                Layout.fillWidth: true
                text: qsTr("Enjoying Halcyra? Let us know on Trustpilot!")
                color: Theme.secondaryText
                font.pixelSize: Theme.bodySize
                wrapMode: Text.WordWrap
            }
            ActionButton {
                title: qsTr("Write a Review")
                symbol: "arrow.up.forward.app"
                style: "secondary"
                onAction: Qt.openUrlExternally(AppInfo.reviewUrl)
            }
        }

        SettingsGroup {
            Layout.fillWidth: true
            heading: Strings.settings.about
            Text {
                Layout.fillWidth: true
                text: AppInfo.name + " " + AppInfo.version
                color: Theme.secondaryText
                font.pixelSize: Theme.bodySize
            }
            ActionButton {
                title: Strings.settings.about
                style: "secondary"
                onAction: settings.viewModel.showAbout = true
            }
        }
    }

    AboutView {
        objectName: "settingsAbout"
        shown: settings.viewModel.showAbout
        onDone: settings.viewModel.showAbout = false
    }
}
