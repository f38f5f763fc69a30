import QtQuick
import QtQuick.Dialogs
import QtQuick.Layouts
import Halcyra

// The analyzer before a scan: what it does, one button for each quick target, and a folder of
// the user's choice. The parts come in one after the other.
Item {
    id: view
    property var folderTargets: []
    signal scanPath(string path)
    signal scanFolder(url folder)

    Component.onCompleted: {
        orbIn.restart()
        titleIn.restart()
        targetsIn.restart()
        chooseIn.restart()
    }

    ColumnLayout {
        anchors.centerIn: parent
        anchors.verticalCenterOffset: -20
        width: Math.min(parent.width - 60, 600)
        spacing: 0

        ScanOrbView {
            id: orb
            Layout.alignment: Qt.AlignHCenter
            symbol: "chart.pie"
            diameter: 110
            opacity: 0
        }

        ColumnLayout {
            id: titleBlock
            Layout.fillWidth: true
            Layout.topMargin: 4
            spacing: 6
            opacity: 0
            Text {
                Layout.fillWidth: true
                text: Strings.diskAnalyzer.title
                color: Theme.primaryText
                font.pixelSize: Theme.titleSize
                font.weight: Font.Bold
                horizontalAlignment: Text.AlignHCenter
            }
            Text {
                Layout.fillWidth: true
                text: Strings.diskAnalyzer.description
                color: Theme.secondaryText
                font.pixelSize: Theme.bodySize
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.WordWrap
            }
        }

        ColumnLayout {
            id: targets
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: 24
            spacing: 10
            opacity: 0
            Text {
                Layout.alignment: Qt.AlignHCenter
                text: qsTr("Quick Analyze")
                color: Theme.secondaryText
                font.pixelSize: Theme.captionSize
                font.weight: Font.DemiBold
                font.capitalization: Font.AllUppercase
            }
            Flow {
                Layout.alignment: Qt.AlignHCenter
                Layout.preferredWidth: Math.min(5 * 108, view.width - 60)
                spacing: 8
                Repeater {
                    model: view.folderTargets
                    Rectangle {
                        id: target
                        required property var modelData
                        width: 100
                        height: 74
                        radius: 12
                        color: targetMouse.containsMouse ? Theme.withAlpha(Theme.accent, 0.1) : Theme.controlBackground
                        border.width: 0.5
                        border.color: Theme.separator
                        Accessible.role: Accessible.Button
                        Accessible.name: modelData.label
                        Column {
                            anchors.centerIn: parent
                            spacing: 7
                            SymbolIcon {
                                anchors.horizontalCenter: parent.horizontalCenter
                                symbol: target.modelData.symbol
                                color: Theme.accent
                                size: 22
                            }
                            Text {
                                anchors.horizontalCenter: parent.horizontalCenter
                                text: target.modelData.label
                                color: Theme.primaryText
                                font.pixelSize: Theme.captionSize + 1
                                font.weight: Font.Medium
                            }
                        }
                        MouseArea {
                            id: targetMouse
                            anchors.fill: parent
                            hoverEnabled: true
                            cursorShape: Qt.PointingHandCursor
                            onClicked: view.scanPath(target.modelData.path)
                        }
                    }
                }
            }
        }

        ColumnLayout {
            id: choose
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: 18
            spacing: 12
            opacity: 0
            Text {
                Layout.alignment: Qt.AlignHCenter
                text: qsTr("or")
                color: Theme.tertiaryText
                font.pixelSize: Theme.bodySize
            }
            ActionButton {
                Layout.alignment: Qt.AlignHCenter
                Layout.preferredWidth: 180
                Layout.preferredHeight: 38
                title: qsTr("Choose Folder")
                symbol: "folder"
                style: "primary"
                onAction: folderDialog.open()
            }
        }
    }

    FolderDialog {
        id: folderDialog
        title: qsTr("Choose a folder to analyze")
        acceptLabel: qsTr("Analyze")
        onAccepted: view.scanFolder(selectedFolder)
    }

    SequentialAnimation {
        id: orbIn
        PauseAnimation { duration: Theme.ms(50) }
        ParallelAnimation {
            NumberAnimation { target: orb; property: "opacity"; from: 0; to: 1; duration: Theme.ms(600); easing.type: Easing.OutCubic }
            NumberAnimation { target: orb; property: "scale"; from: 0.8; to: 1; duration: Theme.ms(600); easing.type: Easing.OutCubic }
        }
    }
    SequentialAnimation {
        id: titleIn
        PauseAnimation { duration: Theme.ms(200) }
        NumberAnimation { target: titleBlock; property: "opacity"; from: 0; to: 1; duration: Theme.ms(450); easing.type: Easing.OutCubic }
    }
    SequentialAnimation {
        id: targetsIn
        PauseAnimation { duration: Theme.ms(350) }
        NumberAnimation { target: targets; property: "opacity"; from: 0; to: 1; duration: Theme.ms(450); easing.type: Easing.OutCubic }
    }
    SequentialAnimation {
        id: chooseIn
        PauseAnimation { duration: Theme.ms(500) }
        NumberAnimation { target: choose; property: "opacity"; from: 0; to: 1; duration: Theme.ms(450); easing.type: Easing.OutCubic }
    }
}
