import QtQuick
import QtQuick.Layouts
import Halcyra

// The working screen while a tool removes things: the ring, a title, a line and the status.
Item {
    id: view
    property string title: Strings.clean.executing
    property string subtitle: Strings.clean.executingSubtitle
    property string status

    ColumnLayout {
        anchors.centerIn: parent
        width: Math.min(parent.width - 80, 520)
        spacing: 14

        ProgressRingView { Layout.alignment: Qt.AlignHCenter; Layout.bottomMargin: 14 }
        Text {
            Layout.alignment: Qt.AlignHCenter
            text: view.title
            color: Theme.primaryText
            font.pixelSize: Theme.titleSize
            font.weight: Font.Bold
        }
        Text {
            Layout.fillWidth: true
            text: view.subtitle
            color: Theme.secondaryText
            font.pixelSize: Theme.bodySize
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.WordWrap
        }
        Text {
            Layout.fillWidth: true
            visible: view.status.length > 0
            text: view.status
            color: Theme.tertiaryText
            font.pixelSize: Theme.captionSize
            horizontalAlignment: Text.AlignHCenter
            elide: Text.ElideMiddle
        }
    }
}
