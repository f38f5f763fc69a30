import QtQuick
import QtQuick.Layouts
import Halcyra

// One section of the results: what it holds, what it is, and a way into its review.
Rectangle {
    id: cardView
    // name, title, description, icon, totalSizeText, categoryCount, skippedCount, height
    property var card: ({})
    signal tap()

    readonly property color tint: Theme.sectionColor(card.name)
    readonly property real grow: (card.height || 140) - 140

    height: card.height || 140
    radius: 16
    clip: true
    color: Theme.withAlpha(tint, mouse.containsMouse ? 0.11 : 0.07)
    border.width: 0.5
    border.color: Theme.withAlpha(tint, 0.25)
    Accessible.role: Accessible.Button
    Accessible.name: title.text
    Accessible.onPressAction: cardView.tap()

    SymbolIcon {
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        anchors.rightMargin: -size * 0.12
        anchors.bottomMargin: -size * 0.12
        symbol: card.icon || "folder"
        size: 55 + 0.4 * cardView.grow
        color: Theme.withAlpha(cardView.tint, 0.3)
        gradientEnd: Theme.withAlpha(cardView.tint, 0.08)
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 16
        spacing: 6

        Text {
            id: title
            Layout.fillWidth: true
            text: card.totalSizeText + " " + qsTr("of") + " " + card.title + " " + qsTr("Found")
            color: Theme.primaryText
            font.pixelSize: 20 + 0.06 * cardView.grow
            font.weight: Font.Bold
            wrapMode: Text.WordWrap
            maximumLineCount: 2
            elide: Text.ElideRight
        }
        Text {
            Layout.fillWidth: true
            Layout.rightMargin: 40
            text: card.description || ""
            color: Theme.secondaryText
            font.pixelSize: Theme.bodySize - 1
            wrapMode: Text.WordWrap
        }
        RowLayout {
            visible: (card.skippedCount || 0) > 0
            spacing: 4
            SymbolIcon { symbol: "exclamationmark.triangle.fill"; color: Theme.orange; size: 12 }
            Text {
                text: card.skippedCount + " " + qsTr("skipped")
                color: Theme.orange
                font.pixelSize: Theme.captionSize + 1
            }
        }
        Item { Layout.fillHeight: true }
        RowLayout {
            Layout.fillWidth: true
            Text {
                Layout.fillWidth: true
                text: card.categoryCount + " " + (card.categoryCount === 1 ? qsTr("category") : qsTr("categories"))
                color: Theme.secondaryText
                font.pixelSize: Theme.captionSize + 1
            }
            Rectangle {
                implicitWidth: review.implicitWidth + 20
                implicitHeight: 22
                radius: 11
                color: cardView.tint
                Text {
                    id: review
                    anchors.centerIn: parent
                    text: qsTr("Review")
                    color: "white"
                    font.pixelSize: Theme.captionSize + 1
                    font.weight: Font.DemiBold
                }
            }
        }
    }

    MouseArea {
        id: mouse
        anchors.fill: parent
        hoverEnabled: true
        cursorShape: Qt.PointingHandCursor
        onClicked: cardView.tap()
    }
}
