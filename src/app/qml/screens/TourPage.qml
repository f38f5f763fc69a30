import QtQuick
import QtQuick.Layouts
import Halcyra

// One page of the tour: the symbol on a coloured disc, title, subtitle, and either three
// feature rows or, on the last page, the two small badges.
Item {
    id: tourPage
    property var page: ({ symbol: "", colors: ["#000000", "#000000"], title: "", subtitle: "", features: [] })
    property bool isLast: false
    property int index: 0

    ColumnLayout {
        anchors.centerIn: parent
        width: Math.min(parent.width - 120, 560)
        spacing: 14

        Rectangle {
            Layout.alignment: Qt.AlignHCenter
            Layout.bottomMargin: 8
            implicitWidth: 104
            implicitHeight: 104
            radius: 28
            gradient: Gradient {
                GradientStop { position: 0.0; color: tourPage.page.colors[0] }
                GradientStop { position: 1.0; color: tourPage.page.colors[1] }
            }
            SymbolIcon {
                anchors.centerIn: parent
                symbol: tourPage.page.symbol
                color: "white"
                size: 54
            }
        }
        Text {
            Layout.fillWidth: true
            text: tourPage.page.title
            color: Theme.primaryText
            font.pixelSize: 28
            font.weight: Font.Bold
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.WordWrap
        }
        Text {
            Layout.fillWidth: true
            text: tourPage.page.subtitle
            color: Theme.secondaryText
            font.pixelSize: Theme.headlineSize - 1
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.WordWrap
            lineHeight: 1.15
        }

        ColumnLayout {
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: 10
            visible: tourPage.page.features.length > 0
            spacing: 10
            Repeater {
                model: tourPage.page.features
                RowLayout {
                    required property var modelData
                    spacing: 12
                    Rectangle {
                        implicitWidth: 30
                        implicitHeight: 30
                        radius: 8
                        color: Theme.withAlpha(tourPage.page.colors[1], 0.12)
                        SymbolIcon {
                            anchors.centerIn: parent
                            symbol: modelData.symbol
                            color: tourPage.page.colors[1]
                            size: 17
                        }
                    }
                    Text {
                        text: modelData.text
                        color: Theme.primaryText
                        font.pixelSize: Theme.bodySize + 1
                    }
                }
            }
        }

        RowLayout {
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: 10
            visible: tourPage.isLast
            spacing: 12
            StatBadge { symbol: "clock"; text: qsTr("< 30 sec") }
            StatBadge { symbol: "checkmark.shield"; text: qsTr("Safe") }
        }
    }
}
