import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Halcyra
import Halcyra.Env

// The scan's result: a header with the reclaimable total and the actions, the groups on the
// left with a search field, and the files of the active group on the right.
Item {
    id: view
    // The group picked in the list; until one is, the panel shows the first group.
    property string selectedGroupId: ""
    property alias searchText: searchField.text
    signal back()
    signal rescan()

    // Taken from all groups, not the filtered ones: a search that hides the active group
    // leaves its files on show.
    readonly property string activeGroupId: {
        DuplicatesViewModel.groupCount
        return DuplicatesViewModel.activeGroupId(selectedGroupId)
    }

    Binding {
        target: DuplicatesViewModel.groupsModel
        property: "searchText"
        value: view.searchText
    }
    Binding {
        target: DuplicatesViewModel.filesModel
        property: "groupId"
        value: view.activeGroupId
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 24
        anchors.topMargin: 20
        spacing: 16

        // Header: navigation on top, then the total and what to do with it.
        RowLayout {
            Layout.fillWidth: true
            spacing: 10
            ActionButton {
                title: qsTr("Back")
                symbol: "chevron.left"
                style: "secondary"
                onAction: view.back()
            }
            Item { Layout.fillWidth: true }
            ActionButton {
                title: qsTr("Rescan")
                symbol: "arrow.clockwise"
                style: "secondary"
                onAction: view.rescan()
            }
        }
        RowLayout {
            Layout.fillWidth: true
            Layout.topMargin: -6
            spacing: 10
            ColumnLayout {
                spacing: 0
                Text {
                    text: qsTr("There are")
                    color: Theme.secondaryText
                    font.pixelSize: Theme.headlineSize
                }
                Text {
                    objectName: "duplicatesWastedTotal"
                    text: DuplicatesViewModel.totalWastedText
                    color: Theme.accent
                    font.pixelSize: 34
                    font.weight: Font.Bold
                }
                Text {
                    text: qsTr("of duplicate files on your Mac.")
                    color: Theme.secondaryText
                    font.pixelSize: Theme.headlineSize
                }
            }
            Item { Layout.fillWidth: true }
            ActionButton {
                id: autoSelect
                Layout.alignment: Qt.AlignBottom
                title: qsTr("Auto-Select")
                symbol: "wand.and.stars"
                style: "secondary"
                onAction: strategyMenu.popup(autoSelect, 0, autoSelect.height + 4)
                Menu {
                    id: strategyMenu
                    objectName: "strategyMenu"
                    y: autoSelect.height + 4
                    background: Rectangle {
                        implicitWidth: 170
                        radius: 8
                        color: Theme.windowBackground
                        border.width: 0.5
                        border.color: Qt.rgba(0, 0, 0, 0.2)
                    }
                    MenuItem {
                        text: Strings.duplicates.keepOldest
                        onTriggered: DuplicatesViewModel.applyStrategy("keepOldest")
                    }
                    MenuItem {
                        text: Strings.duplicates.keepNewest
                        onTriggered: DuplicatesViewModel.applyStrategy("keepNewest")
                    }
                }
            }
            ActionButton {
                Layout.alignment: Qt.AlignBottom
                title: Strings.duplicates.deleteSelected
                symbol: "trash"
                style: "destructive"
                isDisabled: DuplicatesViewModel.totalSelectedCount < 1
                onAction: DuplicatesViewModel.requestConfirmation()
            }
        }

        RowLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            spacing: 0

            // Sidebar: search, counts, one row per group.
            Rectangle {
                Layout.preferredWidth: Math.max(260, Math.min(340, view.width * 0.36))
                Layout.fillHeight: true
                radius: 12
                color: Theme.controlBackground

                ColumnLayout {
                    anchors.fill: parent
                    anchors.margins: 10
                    spacing: 8

                    TextField {
                        id: searchField
                        objectName: "duplicatesSearch"
                        Layout.fillWidth: true
                        placeholderText: qsTr("Search duplicates…")
                        leftPadding: 30
                        font.pixelSize: Theme.bodySize
                        color: Theme.primaryText
                        placeholderTextColor: Theme.tertiaryText
                        background: Rectangle {
                            implicitHeight: 30
                            radius: 8
                            color: Theme.windowBackground
                            border.width: searchField.activeFocus ? 2 : 0.5
                            border.color: searchField.activeFocus ? Theme.withAlpha(Theme.accent, 0.5) : Theme.separator
                            SymbolIcon {
                                anchors.left: parent.left
                                anchors.leftMargin: 9
                                anchors.verticalCenter: parent.verticalCenter
                                symbol: "magnifyingglass"
                                color: Theme.secondaryText
                                size: 13
                            }
                        }
                    }

                    RowLayout {
                        Layout.fillWidth: true
                        Layout.leftMargin: 4
                        Layout.rightMargin: 4
                        Text {
                            Layout.fillWidth: true
                            text: qsTr("%1 groups").arg(groupList.count)
                            color: Theme.secondaryText
                            font.pixelSize: Theme.captionSize
                            font.weight: Font.DemiBold
                        }
                        Text {
                            text: qsTr("%1 selected").arg(DuplicatesViewModel.totalSelectedCount)
                            color: Theme.red
                            font.pixelSize: Theme.captionSize
                            font.weight: Font.DemiBold
                        }
                    }

                    ListView {
                        id: groupList
                        objectName: "duplicateGroupList"
                        Layout.fillWidth: true
                        Layout.fillHeight: true
                        clip: true
                        spacing: 2
                        model: DuplicatesViewModel.groupsModel
                        boundsBehavior: Flickable.StopAtBounds
                        ScrollBar.vertical: ScrollBar {}
                        delegate: DuplicateGroupRow {
                            width: groupList.width
                            isActive: groupId === view.activeGroupId
                            onPicked: view.selectedGroupId = groupId
                        }
                    }
                }
            }

            // Detail panel: the active group's files.
            Item {
                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.leftMargin: 18

                Text {
                    anchors.centerIn: parent
                    visible: !DuplicatesViewModel.filesModel.hasGroup
                    text: qsTr("Select a duplicate group")
                    color: Theme.tertiaryText
                    font.pixelSize: Theme.headlineSize
                }

                ColumnLayout {
                    anchors.fill: parent
                    visible: DuplicatesViewModel.filesModel.hasGroup
                    spacing: 12

                    RowLayout {
                        Layout.fillWidth: true
                        spacing: 12
                        Rectangle {
                            Layout.alignment: Qt.AlignTop
                            implicitWidth: 44
                            implicitHeight: 44
                            radius: 10
                            color: Theme.withAlpha(Theme.accent, 0.1)
                            SymbolIcon {
                                anchors.centerIn: parent
                                symbol: DuplicatesViewModel.fileIcon(DuplicatesViewModel.filesModel.name)
                                color: Theme.accent
                                size: 22
                            }
                        }
                        ColumnLayout {
                            Layout.fillWidth: true
                            spacing: 2
                            Text {
                                Layout.fillWidth: true
                                text: DuplicatesViewModel.filesModel.name
                                color: Theme.primaryText
                                font.pixelSize: Theme.headlineSize + 2
                                font.weight: Font.Bold
                                elide: Text.ElideMiddle
                            }
                            Text {
                                text: qsTr("Hash: ") + DuplicatesViewModel.filesModel.fileHash
                                color: Theme.tertiaryText
                                font.pixelSize: Theme.captionSize
                                font.family: "monospace"
                            }
                            Text {
                                text: qsTr("%1 copies • %2 each").arg(DuplicatesViewModel.filesModel.copies)
                                                                 .arg(DuplicatesViewModel.filesModel.eachSizeText)
                                color: Theme.secondaryText
                                font.pixelSize: Theme.bodySize - 1
                            }
                        }
                    }

                    RowLayout {
                        Layout.fillWidth: true
                        spacing: 8
                        Text {
                            Layout.fillWidth: true
                            text: qsTr("%1 of %2 selected for deletion").arg(DuplicatesViewModel.filesModel.selectedCount)
                                                                         .arg(DuplicatesViewModel.filesModel.copies)
                            color: Theme.secondaryText
                            font.pixelSize: Theme.bodySize - 1
                            font.weight: Font.DemiBold
                        }
                        ActionButton {
                            implicitHeight: 28
                            title: qsTr("Select All")
                            style: "secondary"
                            onAction: DuplicatesViewModel.selectAllInGroup(view.activeGroupId)
                        }
                        ActionButton {
                            implicitHeight: 28
                            title: qsTr("Deselect All")
                            style: "secondary"
                            onAction: DuplicatesViewModel.deselectAllInGroup(view.activeGroupId)
                        }
                    }

                    ListView {
                        id: fileList
                        objectName: "duplicateFileList"
                        Layout.fillWidth: true
                        Layout.fillHeight: true
                        clip: true
                        spacing: 6
                        model: DuplicatesViewModel.filesModel
                        boundsBehavior: Flickable.StopAtBounds
                        ScrollBar.vertical: ScrollBar {}
                        delegate: DuplicateFileRow {
                            width: fileList.width
                            onToggled: DuplicatesViewModel.toggleFile(view.activeGroupId, fileId)
                        }
                    }
                }
            }
        }
    }
}
