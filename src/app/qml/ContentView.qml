import QtQuick
import QtQuick.Layouts
import Halcyra
import Halcyra.Env

// The tour until it is complete; then the sidebar, a divider and the selected tool's screen.
Item {
    id: content

    OnboardingView {
        objectName: "onboarding"
        anchors.fill: parent
        visible: !AppState.isOnboardingComplete
    }

    RowLayout {
        anchors.fill: parent
        spacing: 0
        visible: AppState.isOnboardingComplete

        SidebarView {
            objectName: "sidebar"
            Layout.preferredWidth: 200
            Layout.fillHeight: true
        }
        Rectangle {
            Layout.preferredWidth: 1
            Layout.fillHeight: true
            color: Theme.separator
        }
        Item {
            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true

            // A tool whose screen is built in shows it; the others say plainly that they are
            // not there yet. The loader makes a screen anew each time it is chosen, so its
            // appearance runs again; the tool's state lives in its view model.
            Loader {
                id: detail
                objectName: "detail"
                anchors.fill: parent
                active: AppState.isOnboardingComplete
                readonly property string screenUrl: Navigation.screenUrl(AppState.selectedNavItem)
                source: screenUrl.length > 0 ? screenUrl : Qt.resolvedUrl("PlaceholderView.qml")
            }
        }
    }
}
