import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Halcyra
import Halcyra.Env

// The scan's results: the reclaimable total, "Rescan" and "Clean All", the access banner, and
// one card per section in two columns, each card as high as its share of the largest.
Item {
    id: preview
    // The section whose review sheet is open; empty when none is.
    property string reviewSection: ""
    property string reviewTitle: ""
    signal rescan()

    function openReview(section) {
        const cards = CleanViewModel.leftCards.concat(CleanViewModel.rightCards)
        for (let i = 0; i < cards.length; ++i) {
            if (cards[i].name === section) reviewTitle = cards[i].title
        }
        reviewSection = section
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.leftMargin: 28
        anchors.rightMargin: 28
        spacing: 14

        RowLayout {
            Layout.fillWidth: true
            spacing: 10
            ColumnLayout {
                spacing: 0
                Text {
                    text: qsTr("There are")
                    color: Theme.secondaryText
                    font.pixelSize: Theme.headlineSize
                }
                Text {
                    objectName: "reclaimableTotal"
                    text: CleanViewModel.totalReclaimableText
                    color: Theme.accent
                    font.pixelSize: 40
                    font.weight: Font.Bold
                }
                Text {
                    text: qsTr("of junk files on your Mac.")
                    color: Theme.secondaryText
                    font.pixelSize: Theme.headlineSize
                }
            }
            Item { Layout.fillWidth: true }
            ActionButton {
                Layout.alignment: Qt.AlignBottom
                title: qsTr("Rescan")
                symbol: "arrow.clockwise"
                style: "secondary"
                onAction: preview.rescan()
            }
            ActionButton {
                Layout.alignment: Qt.AlignBottom
                title: qsTr("Clean All")
                style: "primary"
                onAction: CleanViewModel.cleanAll()
            }
        }

        FullDiskAccessBanner {
            Layout.fillWidth: true
            // Asked afresh whenever the results change, never polled.
            visible: { CleanViewModel.categoryCount; return CleanViewModel.needsAccessBanner() }
        }

        ScrollView {
            id: scroll
            Layout.fillWidth: true
            Layout.fillHeight: true
            contentWidth: availableWidth
            clip: true

            Row {
                id: grid
                width: scroll.availableWidth
                spacing: 14
                opacity: 0
                readonly property real columnWidth: (width - spacing) / 2

                Column {
                    width: grid.columnWidth
                    spacing: 14
                    Repeater {
                        model: CleanViewModel.leftCards
                        SectionCard {
                            required property var modelData
                            width: grid.columnWidth
                            card: modelData
                            onTap: preview.openReview(modelData.name)
                        }
                    }
                }
                Column {
                    width: grid.columnWidth
                    spacing: 14
                    Repeater {
                        model: CleanViewModel.rightCards
                        SectionCard {
                            required property var modelData
                            width: grid.columnWidth
                            card: modelData
                            onTap: preview.openReview(modelData.name)
                        }
                    }
                }
                Item { width: 1; height: 14 }
            }
        }
    }

    // The cards fade and rise into place once, as the preview appears.
    SequentialAnimation {
        running: true
        PauseAnimation { duration: Theme.ms(100) }
        ParallelAnimation {
            NumberAnimation { target: grid; property: "opacity"; from: 0; to: 1; duration: Theme.ms(500); easing.type: Easing.OutCubic }
            NumberAnimation { target: grid; property: "y"; from: 16; to: 0; duration: Theme.ms(500); easing.type: Easing.OutCubic }
        }
    }

    SectionReviewSheet {
        objectName: "reviewSheet"
        shown: preview.reviewSection.length > 0
        sectionName: preview.reviewSection
        sectionTitle: preview.reviewTitle
        width: Math.min(preview.width + 160, 820)
        height: Math.min(preview.height + 60, 540)
        onDismiss: preview.reviewSection = ""
        onCleanSection: {
            CleanViewModel.keepOnlySection(preview.reviewSection)
            preview.reviewSection = ""
            confirmAfterSheet.restart()
        }
    }

    // The confirmation follows once the review sheet has gone.
    Timer {
        id: confirmAfterSheet
        interval: 300
        onTriggered: CleanViewModel.requestConfirmation()
    }
}
