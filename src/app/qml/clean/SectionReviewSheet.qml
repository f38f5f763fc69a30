import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Halcyra
import Halcyra.Env

// One section opened up: its categories on the left (skipped ones below them), the chosen
// category's items with check marks on the right, and a footer to clean this section alone.
Sheet {
    id: sheet
    property string sectionName
    property string sectionTitle
    // The category the user picked; empty means the first (largest) one.
    property string selectedCategoryId: ""
    signal dismiss()
    signal cleanSection()

    readonly property color tint: Theme.sectionColor(sectionName)
    // Rebuilt when the results change, not on every check mark, so the lists keep their place.
    readonly property var sectionCategories: { CleanViewModel.categoryCount; return shown ? CleanViewModel.reviewCategories(sectionName) : [] }
    readonly property var skippedCategories: { CleanViewModel.categoryCount; return shown ? CleanViewModel.skippedCategories(sectionName) : [] }
    readonly property string activeCategoryId: selectedCategoryId.length > 0 ? selectedCategoryId
                                             : sectionCategories.length > 0 ? sectionCategories[0].id : ""
    readonly property var selectedCategory: { CleanViewModel.categoryCount; return CleanViewModel.categoryInfo(activeCategoryId) }
    readonly property bool hasSelectedCategory: selectedCategory.id !== undefined
    readonly property int selectedCount: { CleanViewModel.selectedItemCount; return CleanViewModel.sectionSelectedCount(sectionName) }

    onShownChanged: if (shown) selectedCategoryId = ""
    onCancelRequested: dismiss()

    Binding {
        target: CleanViewModel.itemsModel
        property: "categoryId"
        value: sheet.activeCategoryId
        when: sheet.shown
    }

    contentItem: ColumnLayout {
        spacing: 0

        // Header.
        RowLayout {
            Layout.fillWidth: true
            Layout.margins: 14
            spacing: 12
            Rectangle {
                implicitWidth: backRow.implicitWidth + 16
                implicitHeight: 26
                radius: 6
                color: backMouse.containsMouse ? Theme.controlBackground : "transparent"
                Row {
                    id: backRow
                    anchors.centerIn: parent
                    spacing: 4
                    SymbolIcon { anchors.verticalCenter: parent.verticalCenter; symbol: "chevron.left"; color: Theme.accent; size: 13 }
                    Text { text: qsTr("Back"); color: Theme.accent; font.pixelSize: Theme.bodySize }
                }
                MouseArea { id: backMouse; anchors.fill: parent; hoverEnabled: true; onClicked: sheet.dismiss() }
                Accessible.role: Accessible.Button
                Accessible.name: qsTr("Back")
            }
            Text {
                Layout.fillWidth: true
                text: sheet.sectionTitle
                color: Theme.primaryText
                font.pixelSize: Theme.headlineSize + 2
                font.weight: Font.Bold
                elide: Text.ElideRight
            }
            Text {
                text: qsTr("Select All")
                color: sheet.tint
                font.pixelSize: Theme.bodySize
                font.weight: Font.DemiBold
                MouseArea { anchors.fill: parent; cursorShape: Qt.PointingHandCursor; onClicked: CleanViewModel.selectAllInSection(sheet.sectionName) }
            }
            Text { text: "·"; color: Theme.tertiaryText; font.pixelSize: Theme.bodySize }
            Text {
                text: qsTr("Deselect All")
                color: sheet.tint
                font.pixelSize: Theme.bodySize
                font.weight: Font.DemiBold
                MouseArea { anchors.fill: parent; cursorShape: Qt.PointingHandCursor; onClicked: CleanViewModel.deselectAllInSection(sheet.sectionName) }
            }
        }
        Rectangle { Layout.fillWidth: true; Layout.preferredHeight: 1; color: Theme.separator }

        RowLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            spacing: 0

            // Category sidebar.
            Rectangle {
                Layout.preferredWidth: 250
                Layout.fillHeight: true
                color: Theme.controlBackground
                ListView {
                    id: categoryList
                    anchors.fill: parent
                    anchors.margins: 8
                    clip: true
                    spacing: 2
                    model: sheet.sectionCategories
                    boundsBehavior: Flickable.StopAtBounds
                    ScrollBar.vertical: ScrollBar {}
                    delegate: CategoryRow {
                        required property var modelData
                        width: categoryList.width
                        name: modelData.name
                        symbol: modelData.icon
                        detail: modelData.sizeText
                        tint: sheet.tint
                        active: sheet.activeCategoryId === modelData.id
                        onPicked: sheet.selectedCategoryId = modelData.id
                    }
                    footer: Column {
                        width: categoryList.width
                        visible: sheet.skippedCategories.length > 0
                        topPadding: 8
                        spacing: 2
                        Rectangle { width: parent.width; height: 1; color: Theme.separator }
                        Row {
                            leftPadding: 8
                            topPadding: 8
                            bottomPadding: 4
                            spacing: 5
                            SymbolIcon { symbol: "exclamationmark.triangle.fill"; color: Theme.orange; size: 12 }
                            Text {
                                text: sheet.skippedCategories.length + " " + qsTr("Skipped")
                                color: Theme.orange
                                font.pixelSize: Theme.captionSize + 1
                                font.weight: Font.DemiBold
                            }
                        }
                        Repeater {
                            model: sheet.skippedCategories
                            CategoryRow {
                                required property var modelData
                                width: categoryList.width
                                name: modelData.name
                                symbol: modelData.icon
                                detail: modelData.reason.length > 0 ? modelData.reason : qsTr("Skipped")
                                tint: Theme.orange
                                skipped: true
                                active: sheet.activeCategoryId === modelData.id
                                onPicked: sheet.selectedCategoryId = modelData.id
                            }
                        }
                    }
                }
            }
            Rectangle { Layout.preferredWidth: 1; Layout.fillHeight: true; color: Theme.separator }

            // Items panel.
            Item {
                Layout.fillWidth: true
                Layout.fillHeight: true

                Text {
                    anchors.centerIn: parent
                    visible: !sheet.hasSelectedCategory
                    text: qsTr("Select a category")
                    color: Theme.secondaryText
                    font.pixelSize: Theme.bodySize
                }

                ColumnLayout {
                    anchors.fill: parent
                    anchors.margins: 14
                    visible: sheet.hasSelectedCategory
                    spacing: 8
                    Text {
                        Layout.fillWidth: true
                        text: sheet.selectedCategory.name || ""
                        color: Theme.primaryText
                        font.pixelSize: Theme.headlineSize
                        font.weight: Font.Bold
                        elide: Text.ElideRight
                    }
                    RowLayout {
                        visible: sheet.selectedCategory.skipReason !== undefined
                        spacing: 5
                        SymbolIcon { symbol: "exclamationmark.triangle.fill"; color: Theme.orange; size: 12 }
                        Text {
                            text: sheet.selectedCategory.skipReason || ""
                            color: Theme.orange
                            font.pixelSize: Theme.captionSize + 1
                        }
                    }
                    Text {
                        visible: (sheet.selectedCategory.itemCount || 0) === 0
                        text: qsTr("No items in this category.")
                        color: Theme.secondaryText
                        font.pixelSize: Theme.bodySize
                    }
                    ListView {
                        id: itemList
                        Layout.fillWidth: true
                        Layout.fillHeight: true
                        clip: true
                        model: CleanViewModel.itemsModel
                        boundsBehavior: Flickable.StopAtBounds
                        ScrollBar.vertical: ScrollBar {}
                        delegate: Rectangle {
                            id: itemRow
                            required property string itemId
                            required property string name
                            required property string path
                            required property string sizeText
                            required property bool isSelected
                            required property string icon
                            width: itemList.width
                            height: 44
                            radius: 6
                            color: itemMouse.containsMouse ? Theme.controlBackground : "transparent"
                            Accessible.role: Accessible.CheckBox
                            Accessible.name: name
                            Accessible.checked: isSelected

                            RowLayout {
                                anchors.fill: parent
                                anchors.leftMargin: 6
                                anchors.rightMargin: 10
                                spacing: 10
                                SymbolIcon {
                                    symbol: itemRow.isSelected ? "checkmark.circle.fill" : "circle"
                                    color: itemRow.isSelected ? sheet.tint : Theme.secondaryText
                                    size: 18
                                }
                                SymbolIcon { symbol: itemRow.icon; color: Theme.secondaryText; size: 18 }
                                ColumnLayout {
                                    Layout.fillWidth: true
                                    spacing: 1
                                    Text {
                                        Layout.fillWidth: true
                                        text: itemRow.name
                                        color: Theme.primaryText
                                        font.pixelSize: Theme.bodySize
                                        elide: Text.ElideMiddle
                                    }
                                    Text {
                                        Layout.fillWidth: true
                                        text: itemRow.path
                                        color: Theme.tertiaryText
                                        font.pixelSize: Theme.captionSize - 1
                                        elide: Text.ElideMiddle
                                    }
                                }
                                Text {
                                    text: itemRow.sizeText
                                    color: Theme.secondaryText
                                    font.pixelSize: Theme.bodySize - 1
                                }
                            }
                            MouseArea {
                                id: itemMouse
                                anchors.fill: parent
                                hoverEnabled: true
                                onClicked: CleanViewModel.toggleItem(sheet.activeCategoryId, itemRow.itemId)
                            }
                        }
                    }
                }
            }
        }

        Rectangle { Layout.fillWidth: true; Layout.preferredHeight: 1; color: Theme.separator }

        // Footer.
        RowLayout {
            Layout.fillWidth: true
            Layout.margins: 14
            spacing: 12
            Text {
                text: sheet.selectedCount + " " + qsTr("Items Selected")
                color: Theme.primaryText
                font.pixelSize: Theme.bodySize
                font.weight: Font.DemiBold
            }
            Text {
                Layout.fillWidth: true
                text: { CleanViewModel.selectedItemCount; return CleanViewModel.sectionSelectedSizeText(sheet.sectionName) }
                color: Theme.secondaryText
                font.pixelSize: Theme.bodySize
            }
            ActionButton {
                title: qsTr("Clean")
                style: "primary"
                isDisabled: sheet.selectedCount === 0
                onAction: sheet.cleanSection()
            }
            ActionButton {
                title: qsTr("Done")
                style: "secondary"
                onAction: sheet.dismiss()
            }
        }
    }
}
