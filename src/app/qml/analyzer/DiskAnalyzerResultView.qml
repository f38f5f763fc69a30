import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Halcyra
import Halcyra.Env

// The scan's results: a toolbar (back, the two tabs, the totals, rescan), the breadcrumb, and
// either the treemap over the rows with the selection bar, or the largest files.
Item {
    id: view
    signal back()
    signal rescan()

    ColumnLayout {
        anchors.fill: parent
        anchors.leftMargin: 28
        anchors.rightMargin: 28
        anchors.bottomMargin: 16
        spacing: 10

        // Sized to fit the narrowest window: compact buttons, one weight for both tabs.
        RowLayout {
            Layout.fillWidth: true
            spacing: 8
            ActionButton {
                Layout.preferredWidth: implicitWidth - 12
                title: Strings.diskAnalyzer.back
                symbol: "chevron.left"
                style: "secondary"
                onAction: view.back()
            }
            // The two tabs as one segmented control.
            Rectangle {
                implicitWidth: tabRow.implicitWidth + 4
                implicitHeight: 30
                radius: 8
                color: Theme.controlBackground
                border.width: 0.5
                border.color: Theme.separator
                Row {
                    id: tabRow
                    anchors.centerIn: parent
                    spacing: 2
                    Repeater {
                        model: DiskAnalyzerViewModel.tabs
                        Rectangle {
                            id: tab
                            required property string modelData
                            readonly property bool current: DiskAnalyzerViewModel.selectedTab === modelData
                            width: tabLabel.implicitWidth + 24
                            height: 26
                            radius: 6
                            color: current ? Theme.windowBackground : "transparent"
                            border.width: current ? 0.5 : 0
                            border.color: Theme.separator
                            Accessible.role: Accessible.PageTab
                            Accessible.name: modelData
                            Text {
                                id: tabLabel
                                anchors.centerIn: parent
                                text: tab.modelData
                                color: Theme.primaryText
                                font.pixelSize: Theme.bodySize - 1
                                font.weight: Font.Medium
                            }
                            MouseArea {
                                anchors.fill: parent
                                cursorShape: Qt.PointingHandCursor
                                onClicked: DiskAnalyzerViewModel.selectedTab = tab.modelData
                            }
                        }
                    }
                }
            }
            Item { Layout.fillWidth: true }
            Text {
                objectName: "analyzerTotal"
                text: DiskAnalyzerViewModel.totalSizeText
                color: Theme.accent
                font.pixelSize: Theme.headlineSize + 1
                font.weight: Font.Bold
            }
            Row {
                spacing: 4
                SymbolIcon {
                    anchors.verticalCenter: parent.verticalCenter
                    symbol: "doc"
                    color: Theme.secondaryText
                    size: 13
                }
                Text {
                    anchors.verticalCenter: parent.verticalCenter
                    text: DiskAnalyzerViewModel.fileCount + " " + Strings.diskAnalyzer.files
                    color: Theme.secondaryText
                    font.pixelSize: Theme.captionSize + 1
                }
            }
            Row {
                spacing: 4
                SymbolIcon {
                    anchors.verticalCenter: parent.verticalCenter
                    symbol: "folder"
                    color: Theme.secondaryText
                    size: 13
                }
                Text {
                    anchors.verticalCenter: parent.verticalCenter
                    text: DiskAnalyzerViewModel.directoryCount + " " + Strings.diskAnalyzer.folders
                    color: Theme.secondaryText
                    font.pixelSize: Theme.captionSize + 1
                }
            }
            ActionButton {
                Layout.preferredWidth: implicitWidth - 12
                title: Strings.diskAnalyzer.rescan
                symbol: "arrow.clockwise"
                style: "secondary"
                onAction: view.rescan()
            }
        }

        // The path walked down from the root; each step leads back to its level.
        Flow {
            objectName: "analyzerBreadcrumb"
            Layout.fillWidth: true
            spacing: 4
            BreadcrumbButton {
                title: DiskAnalyzerViewModel.rootName
                symbol: "folder.fill"
                onPicked: DiskAnalyzerViewModel.navigateToRoot()
            }
            Repeater {
                model: DiskAnalyzerViewModel.breadcrumb
                Row {
                    id: step
                    required property var modelData
                    spacing: 4
                    SymbolIcon {
                        anchors.verticalCenter: parent.verticalCenter
                        symbol: "chevron.right"
                        color: Theme.tertiaryText
                        size: 10
                    }
                    BreadcrumbButton {
                        title: step.modelData.name
                        onPicked: DiskAnalyzerViewModel.navigateToBreadcrumb(step.modelData.index)
                    }
                }
            }
        }

        Loader {
            Layout.fillWidth: true
            Layout.fillHeight: true
            sourceComponent: DiskAnalyzerViewModel.selectedTab === DiskAnalyzerViewModel.tabs[0] ? treemapTab : largestFilesTab
        }
    }

    Component {
        id: treemapTab
        ColumnLayout {
            spacing: 0
            Rectangle {
                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.preferredHeight: 3
                radius: 8
                color: Theme.controlBackground
                TreemapView {
                    id: treemap
                    objectName: "treemap"
                    anchors.fill: parent
                    anchors.margins: 4
                    // Laid out afresh whenever the view's size or the folder on screen changes.
                    cells: {
                        DiskAnalyzerViewModel.displayRevision
                        return DiskAnalyzerViewModel.treemapCells(width, height)
                    }
                    cellStyle: DiskAnalyzerViewModel.treemapStyle
                    onTapped: nodeId => DiskAnalyzerViewModel.drillInto(nodeId)
                }
            }
            Rectangle {
                Layout.fillWidth: true
                Layout.topMargin: 8
                Layout.preferredHeight: 1
                color: Theme.separator
            }
            ListView {
                id: rows
                objectName: "analyzerRows"
                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.preferredHeight: 2
                clip: true
                model: DiskAnalyzerViewModel.rows
                ScrollBar.vertical: ScrollBar {}
                delegate: DirectoryRow {
                    width: rows.width
                    onToggleSelect: DiskAnalyzerViewModel.toggleSelection(nodeId)
                    onTap: DiskAnalyzerViewModel.drillInto(nodeId)
                }
            }
            Rectangle {
                Layout.fillWidth: true
                Layout.preferredHeight: 1
                visible: DiskAnalyzerViewModel.selectedCount > 0
                color: Theme.separator
            }
            RowLayout {
                objectName: "selectionBar"
                Layout.fillWidth: true
                Layout.topMargin: 10
                visible: DiskAnalyzerViewModel.selectedCount > 0
                spacing: 8
                SymbolIcon {
                    symbol: "checkmark.circle.fill"
                    color: Theme.accent
                    size: 16
                }
                Text {
                    text: DiskAnalyzerViewModel.selectedCount + " " + Strings.diskAnalyzer.selectedItems
                    color: Theme.primaryText
                    font.pixelSize: Theme.bodySize
                    font.weight: Font.DemiBold
                }
                Text {
                    text: DiskAnalyzerViewModel.selectedSizeText
                    color: Theme.secondaryText
                    font.pixelSize: Theme.bodySize
                }
                Item { Layout.fillWidth: true }
                ActionButton {
                    title: qsTr("Deselect All")
                    style: "secondary"
                    onAction: DiskAnalyzerViewModel.deselectAll()
                }
                ActionButton {
                    title: Strings.diskAnalyzer.remove
                    symbol: "trash"
                    style: "destructive"
                    onAction: DiskAnalyzerViewModel.requestDelete()
                }
            }
        }
    }

    Component {
        id: largestFilesTab
        ListView {
            id: files
            objectName: "largestFiles"
            clip: true
            spacing: 2
            model: DiskAnalyzerViewModel.largestFiles
            ScrollBar.vertical: ScrollBar {}
            delegate: LargestFileRow {
                required property var modelData
                width: files.width
                name: modelData.name
                path: modelData.path
                sizeText: modelData.sizeText
                onReveal: DiskAnalyzerViewModel.revealInFileManager(modelData.id, DebugLogger)
            }
        }
    }
}
