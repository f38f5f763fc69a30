import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Halcyra
import Halcyra.Env

// The scan's result: a top bar, the two categories with their counts on the left, the list of
// the selected one on the right, and the counts of the whole scan at the bottom.
Item {
    id: view
    signal back()
    signal rescan()

    readonly property var categories: [
        { key: "loginItems", symbol: "person.crop.circle", title: qsTr("User Login Items"),
          description: qsTr("Apps that open automatically whenever you log in to your Mac.") },
        { key: "launchAgents", symbol: "gearshape.2", title: qsTr("Startup Services"),
          description: qsTr("Services that start automatically when your Mac boots or you log in, running constantly in the background.") }
    ]
    readonly property var selected: StartupItemsViewModel.selectedCategory === "launchAgents" ? categories[1] : categories[0]

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        // Top bar.
        RowLayout {
            Layout.fillWidth: true
            Layout.margins: 20
            Layout.bottomMargin: 14
            spacing: 10
            ActionButton {
                objectName: "startupBack"
                title: qsTr("Back")
                symbol: "chevron.left"
                style: "secondary"
                onAction: view.back()
            }
            Text {
                Layout.fillWidth: true
                text: qsTr("Startup Items")
                color: Theme.primaryText
                font.pixelSize: Theme.headlineSize + 2
                font.weight: Font.Bold
                horizontalAlignment: Text.AlignHCenter
            }
            ActionButton {
                objectName: "startupRescan"
                title: qsTr("Rescan")
                symbol: "arrow.clockwise"
                style: "secondary"
                onAction: view.rescan()
            }
        }
        Rectangle { Layout.fillWidth: true; implicitHeight: 1; color: Theme.separator }

        RowLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            spacing: 0

            // Categories.
            Rectangle {
                Layout.preferredWidth: 220
                Layout.fillHeight: true
                color: Theme.controlBackground
                ColumnLayout {
                    anchors.fill: parent
                    anchors.margins: 10
                    spacing: 4
                    Repeater {
                        model: view.categories
                        Rectangle {
                            id: categoryRow
                            required property var modelData
                            readonly property bool isSelected: StartupItemsViewModel.selectedCategory === modelData.key
                            objectName: "startupCategory-" + modelData.key
                            Layout.fillWidth: true
                            implicitHeight: 36
                            radius: 8
                            color: isSelected ? Theme.brandBlue
                                 : categoryMouse.containsMouse ? Theme.withAlpha(Theme.accent, 0.08) : "transparent"
                            RowLayout {
                                anchors.fill: parent
                                anchors.leftMargin: 10
                                anchors.rightMargin: 10
                                spacing: 8
                                SymbolIcon {
                                    symbol: categoryRow.modelData.symbol
                                    color: categoryRow.isSelected ? "white" : Theme.accent
                                    size: 16
                                }
                                Text {
                                    Layout.fillWidth: true
                                    text: categoryRow.modelData.title
                                    color: categoryRow.isSelected ? "white" : Theme.primaryText
                                    font.pixelSize: Theme.bodySize
                                    font.weight: Font.Medium
                                    elide: Text.ElideRight
                                }
                                Text {
                                    text: categoryRow.modelData.key === "launchAgents" ? StartupItemsViewModel.launchAgentCount
                                                                                       : StartupItemsViewModel.loginItemCount
                                    color: categoryRow.isSelected ? "white" : Theme.secondaryText
                                    font.pixelSize: Theme.captionSize + 1
                                    font.weight: Font.DemiBold
                                }
                            }
                            MouseArea {
                                id: categoryMouse
                                anchors.fill: parent
                                hoverEnabled: true
                                cursorShape: Qt.PointingHandCursor
                                onClicked: StartupItemsViewModel.selectCategory(categoryRow.modelData.key)
                            }
                        }
                    }
                    Item { Layout.fillHeight: true }
                }
            }
            Rectangle { Layout.fillHeight: true; implicitWidth: 1; color: Theme.separator }

            // The selected list.
            ColumnLayout {
                Layout.fillWidth: true
                Layout.fillHeight: true
                spacing: 0

                ColumnLayout {
                    Layout.fillWidth: true
                    Layout.margins: 18
                    Layout.bottomMargin: 10
                    spacing: 4
                    Text {
                        objectName: "startupListTitle"
                        text: view.selected.title
                        color: Theme.primaryText
                        font.pixelSize: Theme.headlineSize + 1
                        font.weight: Font.Bold
                    }
                    Text {
                        Layout.fillWidth: true
                        text: view.selected.description
                        color: Theme.secondaryText
                        font.pixelSize: Theme.bodySize - 1
                        wrapMode: Text.WordWrap
                    }
                }

                Item {
                    Layout.fillWidth: true
                    Layout.fillHeight: true

                    ListView {
                        id: itemList
                        objectName: "startupItemList"
                        anchors.fill: parent
                        anchors.leftMargin: 8
                        anchors.rightMargin: 8
                        clip: true
                        spacing: 2
                        visible: count > 0
                        model: StartupItemsViewModel.currentItems
                        boundsBehavior: Flickable.StopAtBounds
                        ScrollBar.vertical: ScrollBar {}
                        delegate: StartupItemRow {
                            id: itemRow
                            width: itemList.width
                            onToggle: StartupItemsViewModel.toggleItem(itemRow.itemId, StartupItemsService, DebugLogger)
                        }
                    }

                    ColumnLayout {
                        objectName: "startupEmpty"
                        anchors.centerIn: parent
                        visible: itemList.count === 0
                        spacing: 8
                        SymbolIcon {
                            Layout.alignment: Qt.AlignHCenter
                            symbol: "checkmark.circle"
                            color: Theme.green
                            size: 40
                        }
                        Text {
                            Layout.alignment: Qt.AlignHCenter
                            text: qsTr("No startup items found.")
                            color: Theme.secondaryText
                            font.pixelSize: Theme.headlineSize
                        }
                    }
                }
            }
        }

        // Status bar: the counts of both lists together.
        Rectangle { Layout.fillWidth: true; implicitHeight: 1; color: Theme.separator }
        RowLayout {
            Layout.fillWidth: true
            Layout.leftMargin: 20
            Layout.rightMargin: 20
            Layout.topMargin: 10
            Layout.bottomMargin: 10
            spacing: 18
            Text {
                objectName: "startupEnabledCount"
                text: qsTr("%1 Items Enabled").arg(StartupItemsViewModel.enabledCount)
                color: Theme.green
                font.pixelSize: Theme.captionSize + 1
                font.weight: Font.DemiBold
            }
            Text {
                objectName: "startupTotalCount"
                text: qsTr("%1 Items Total").arg(StartupItemsViewModel.totalCount)
                color: Theme.secondaryText
                font.pixelSize: Theme.captionSize + 1
                font.weight: Font.DemiBold
            }
            Item { Layout.fillWidth: true }
        }
    }
}
