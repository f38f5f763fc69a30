import QtQuick
import QtQuick.Layouts
import Halcyra
import Halcyra.Env

// The page of a tool that is not part of this build yet.
Item {
    property string title: Navigation.title(AppState.selectedNavItem)

    ColumnLayout {
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.margins: 28
        anchors.topMargin: 22
        spacing: 8
        ScreenHeader { title: parent.parent.title }
        Text {
            Layout.topMargin: 12
            text: qsTr("This tool is not available yet.")
            color: Theme.secondaryText
            font.pixelSize: Theme.bodySize
        }
    }
}
