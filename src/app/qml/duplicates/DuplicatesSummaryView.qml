import QtQuick
import QtQuick.Layouts
import Halcyra

// The end of a delete run: what was freed and how many copies went.
Item {
    id: view
    property string freedText
    property int filesDeleted
    signal scanAgain()
    signal done()

    ColumnLayout {
        anchors.centerIn: parent
        anchors.verticalCenterOffset: -20
        spacing: 10

        SymbolIcon {
            id: checkmark
            Layout.alignment: Qt.AlignHCenter
            symbol: "checkmark.circle.fill"
            color: Theme.green
            size: 80
        }
        Text {
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: 6
            text: Strings.duplicates.summaryTitle
            color: Theme.primaryText
            font.pixelSize: Theme.titleSize + 2
            font.weight: Font.Bold
        }
        Text {
            Layout.alignment: Qt.AlignHCenter
            text: Strings.clean.freed + " " + view.freedText
            color: Theme.accent
            font.pixelSize: 28
            font.weight: Font.Bold
        }
        Text {
            Layout.alignment: Qt.AlignHCenter
            text: qsTr("%1 duplicate files removed").arg(view.filesDeleted)
            color: Theme.secondaryText
            font.pixelSize: Theme.bodySize
        }
        RowLayout {
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: 16
            spacing: 12
            ActionButton {
                Layout.preferredWidth: 130
                title: Strings.clean.scanAgain
                style: "secondary"
                onAction: view.scanAgain()
            }
            ActionButton {
                Layout.preferredWidth: 130
                title: Strings.clean.done
                style: "primary"
                onAction: view.done()
            }
        }
    }

    // The check mark pops in once as the page appears.
    SequentialAnimation {
        running: true
        NumberAnimation { target: checkmark; property: "scale"; from: 0.5; to: 1.08; duration: Theme.ms(260); easing.type: Easing.OutCubic }
        NumberAnimation { target: checkmark; property: "scale"; to: 1; duration: Theme.ms(140); easing.type: Easing.InOutQuad }
    }
}
