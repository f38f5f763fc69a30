import QtQuick
import QtQuick.Layouts
import Halcyra

// The end of a run: the shield, what was destroyed and how, and the ways on. The check mark,
// the details and the buttons come in one after the other.
Item {
    id: view
    property string destroyedText
    property int filesShredded
    property int passes
    signal shredMore()
    signal done()

    Component.onCompleted: {
        markIn.restart()
        detailsIn.restart()
        buttonsIn.restart()
    }

    ColumnLayout {
        anchors.centerIn: parent
        anchors.verticalCenterOffset: -20
        width: Math.min(parent.width - 80, 540)
        spacing: 10

        SymbolIcon {
            id: mark
            Layout.alignment: Qt.AlignHCenter
            symbol: "checkmark.shield.fill"
            color: Theme.green
            size: 80
            opacity: 0
        }

        ColumnLayout {
            id: details
            Layout.fillWidth: true
            spacing: 10
            opacity: 0
            Text {
                Layout.fillWidth: true
                Layout.topMargin: 6
                text: qsTr("Securely Destroyed!")
                color: Theme.primaryText
                font.pixelSize: Theme.titleSize + 2
                font.weight: Font.Bold
                horizontalAlignment: Text.AlignHCenter
            }
            Text {
                Layout.fillWidth: true
                text: qsTr("Files were encrypted, overwritten, and the freed space was filled with random data. Recovery is not possible — even with forensic tools.")
                color: Theme.secondaryText
                font.pixelSize: Theme.bodySize
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.WordWrap
                lineHeight: 1.15
            }
            RowLayout {
                Layout.alignment: Qt.AlignHCenter
                Layout.topMargin: 10
                spacing: 44
                ShredderFigure { value: view.destroyedText; label: qsTr("destroyed"); tint: Theme.accent }
                ShredderFigure { value: view.filesShredded; label: qsTr("files shredded") }
                ShredderFigure { value: view.passes + "x"; label: qsTr("overwrite passes") }
            }
        }

        RowLayout {
            id: buttons
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: 18
            spacing: 12
            opacity: 0
            ActionButton {
                Layout.preferredWidth: 150
                title: qsTr("Shred More Files")
                style: "secondary"
                onAction: view.shredMore()
            }
            ActionButton {
                Layout.preferredWidth: 130
                title: qsTr("Done")
                style: "primary"
                onAction: view.done()
            }
        }
    }

    SequentialAnimation {
        id: markIn
        PauseAnimation { duration: Theme.ms(50) }
        ParallelAnimation {
            NumberAnimation { target: mark; property: "opacity"; from: 0; to: 1; duration: Theme.ms(450); easing.type: Easing.OutCubic }
            NumberAnimation { target: mark; property: "scale"; from: 0.6; to: 1; duration: Theme.ms(450); easing.type: Easing.OutBack }
        }
    }
    SequentialAnimation {
        id: detailsIn
        PauseAnimation { duration: Theme.ms(250) }
        NumberAnimation { target: details; property: "opacity"; from: 0; to: 1; duration: Theme.ms(450); easing.type: Easing.OutCubic }
    }
    SequentialAnimation {
        id: buttonsIn
        PauseAnimation { duration: Theme.ms(450) }
        NumberAnimation { target: buttons; property: "opacity"; from: 0; to: 1; duration: Theme.ms(450); easing.type: Easing.OutCubic }
    }
}
