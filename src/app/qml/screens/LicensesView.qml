import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Halcyra
import Halcyra.Env

// The open-source notices: every third-party component the program ships, with its licence.
Sheet {
    id: licenses
    signal done
    onCancelRequested: done()

    contentItem: Item {
        implicitWidth: 560
        implicitHeight: 480

        ColumnLayout {
            anchors.fill: parent
            spacing: 0

            RowLayout {
                Layout.fillWidth: true
                Layout.margins: 16
                Text {
                    Layout.fillWidth: true
                    text: Strings.settings.openSourceLicenses
                    color: Theme.primaryText
                    font.pixelSize: Theme.headlineSize + 2
                    font.weight: Font.Bold
                }
                ActionButton {
                    title: qsTr("Done")
                    style: "primary"
                    onAction: licenses.done()
                }
            }
            Rectangle {
                Layout.fillWidth: true
                Layout.preferredHeight: 1
                color: Theme.separator
            }

            ListView {
                id: list
                Layout.fillWidth: true
                Layout.fillHeight: true
                clip: true
                spacing: 18
                topMargin: 14
                bottomMargin: 14
                model: AppInfo.components
                boundsBehavior: Flickable.StopAtBounds
                ScrollBar.vertical: ScrollBar {
                }
                delegate: ColumnLayout {
                    required property var modelData
                    width: list.width - 32
                    x: 16
                    spacing: 4
                    Text {
                        text: modelData.name
                        color: Theme.primaryText
                        font.pixelSize: Theme.headlineSize
                        font.weight: Font.DemiBold
                    }
                    Text {
                        Layout.fillWidth: true
                        text: modelData.summary
                        color: Theme.secondaryText
                        font.pixelSize: Theme.bodySize - 1
                        wrapMode: Text.WordWrap
                    }
                    Rectangle {
                        Layout.fillWidth: true
                        implicitHeight: Math.min(notice.implicitHeight + 16, 180)
                        radius: 6
                        color: Theme.controlBackground
                        clip: true
                        Flickable {
                            anchors.fill: parent
                            anchors.margins: 8
                            contentHeight: notice.implicitHeight
                            boundsBehavior: Flickable.StopAtBounds
                            Text {
                                id: notice
                                width: parent.width
                                text: AppInfo.licenseText(modelData.file)
                                color: Theme.secondaryText
                                font.family: "monospace"
                                font.pixelSize: Theme.captionSize - 1
                                wrapMode: Text.WordWrap
                            }
                        }
                    }
                }
            }
        }
    }
}
