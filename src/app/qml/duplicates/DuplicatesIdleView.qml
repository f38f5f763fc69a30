import QtQuick
import QtQuick.Dialogs
import QtQuick.Layouts
import Halcyra

// The duplicate finder's first page: what the tool does (or that the last scan found
// nothing), one pill per quick-scan folder, and "Choose Folder" for any other.
Item {
    id: view
    property bool noDuplicatesFound: false
    property var folderTargets: []
    signal scanPath(string path)
    signal scanFolder(url folder)

    ColumnLayout {
        anchors.centerIn: parent
        anchors.verticalCenterOffset: -20
        width: Math.min(parent.width - 60, 560)
        spacing: 0

        Rectangle {
            id: badge
            Layout.alignment: Qt.AlignHCenter
            implicitWidth: 96
            implicitHeight: 96
            radius: 48
            gradient: Gradient {
                GradientStop { position: 0; color: Theme.withAlpha(Theme.brandLight, 0.25) }
                GradientStop { position: 1; color: Theme.withAlpha(Theme.brandBlue, 0.12) }
            }
            SymbolIcon {
                anchors.centerIn: parent
                symbol: "doc.on.doc"
                color: Theme.brandLight
                gradientEnd: Theme.brandBlue
                size: 44
            }
        }

        Text {
            Layout.fillWidth: true
            Layout.topMargin: 20
            text: Strings.duplicates.title
            color: Theme.primaryText
            font.pixelSize: Theme.titleSize
            font.weight: Font.Bold
            horizontalAlignment: Text.AlignHCenter
        }
        Text {
            objectName: "duplicatesIdleMessage"
            Layout.fillWidth: true
            Layout.topMargin: 6
            text: view.noDuplicatesFound ? Strings.duplicates.noDuplicates
                                         : qsTr("Detect and remove identical files wasting space on your Mac.")
            color: view.noDuplicatesFound ? Theme.green : Theme.secondaryText
            font.pixelSize: Theme.bodySize
            font.weight: view.noDuplicatesFound ? Font.DemiBold : Font.Normal
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.WordWrap
        }

        Text {
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: 28
            text: qsTr("Quick Scan")
            color: Theme.secondaryText
            font.pixelSize: Theme.captionSize
            font.weight: Font.DemiBold
            font.capitalization: Font.AllUppercase
            font.letterSpacing: 0.6
        }

        Flow {
            Layout.alignment: Qt.AlignHCenter
            Layout.preferredWidth: Math.min(implicitWidthHint, view.width - 60)
            Layout.topMargin: 10
            spacing: 8
            // The width that fits all pills on one line.
            property real implicitWidthHint: 5 * 118
            Repeater {
                model: view.folderTargets
                Rectangle {
                    id: pill
                    required property var modelData
                    width: pillRow.implicitWidth + 24
                    height: 30
                    radius: 15
                    color: pillMouse.containsMouse ? Theme.withAlpha(Theme.accent, 0.12) : Theme.controlBackground
                    border.width: 0.5
                    border.color: Theme.separator
                    Accessible.role: Accessible.Button
                    Accessible.name: modelData.label
                    Row {
                        id: pillRow
                        anchors.centerIn: parent
                        spacing: 6
                        SymbolIcon {
                            anchors.verticalCenter: parent.verticalCenter
                            symbol: pill.modelData.icon
                            color: Theme.accent
                            size: 14
                        }
                        Text {
                            anchors.verticalCenter: parent.verticalCenter
                            text: pill.modelData.label
                            color: Theme.primaryText
                            font.pixelSize: Theme.captionSize + 1
                        }
                    }
                    MouseArea {
                        id: pillMouse
                        anchors.fill: parent
                        hoverEnabled: true
                        cursorShape: Qt.PointingHandCursor
                        onClicked: view.scanPath(pill.modelData.path)
                    }
                }
            }
        }

        ActionButton {
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: 24
            Layout.preferredWidth: 180
            Layout.preferredHeight: 38
            title: qsTr("Choose Folder")
            symbol: "folder"
            style: "primary"
            onAction: folderDialog.open()
        }
    }

    FolderDialog {
        id: folderDialog
        objectName: "duplicatesFolderDialog"
        title: qsTr("Choose a folder to scan for duplicates")
        acceptLabel: qsTr("Scan")
        currentFolder: view.folderTargets.length > 0 ? view.folderTargets[0].url : ""
        onAccepted: view.scanFolder(folderDialog.selectedFolder)
    }
}
