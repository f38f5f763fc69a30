import QtQuick
import QtQuick.Layouts
import Halcyra

// A figure of the machine: symbol and title, a large value with a line under it, a bar, and
// room for one more row.
DashboardCard {
    id: metric
    property string symbol
    property color symbolColor: Theme.accent
    property string title
    property string value
    property color valueColor: Theme.primaryText
    property string detail
    // Under the value rather than beside it.
    property bool detailBelow: false
    property real fraction: 0
    property color barColor: Theme.accent
    property bool showsBar: true
    // On a gradient of its own, everything in white (the disk card, beside the health card).
    property var gradientColours: []
    readonly property bool tinted: gradientColours.length === 2
    readonly property color textColour: tinted ? "white" : Theme.primaryText
    readonly property color secondaryColour: tinted ? Qt.rgba(1, 1, 1, 0.8) : Theme.secondaryText
    default property alias extra: extraRow.data

    Rectangle {
        anchors.fill: parent
        visible: metric.tinted
        radius: 16
        gradient: Gradient {
            orientation: Gradient.Horizontal
            GradientStop { position: 0; color: metric.tinted ? metric.gradientColours[0] : "transparent" }
            GradientStop { position: 1; color: metric.tinted ? metric.gradientColours[1] : "transparent" }
        }
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 14
        spacing: 3
        RowLayout {
            spacing: 6
            SymbolIcon {
                symbol: metric.symbol
                color: metric.tinted ? "white" : metric.symbolColor
                size: 16
            }
            Text {
                Layout.fillWidth: true
                text: metric.title
                color: metric.secondaryColour
                font.pixelSize: Theme.bodySize
                font.weight: Font.DemiBold
                elide: Text.ElideRight
            }
        }
        RowLayout {
            spacing: 8
            Text {
                text: metric.value
                color: metric.tinted ? "white" : metric.valueColor
                font.pixelSize: 22
                font.weight: Font.Bold
            }
            Text {
                Layout.alignment: Qt.AlignBaseline
                Layout.fillWidth: true
                visible: !metric.detailBelow
                text: metric.detail
                color: metric.secondaryColour
                font.pixelSize: Theme.bodySize
                elide: Text.ElideRight
            }
        }
        Text {
            Layout.fillWidth: true
            visible: metric.detailBelow
            text: metric.detail
            color: metric.secondaryColour
            font.pixelSize: Theme.bodySize
            elide: Text.ElideRight
        }
        RowLayout {
            id: extraRow
            spacing: 6
            visible: children.length > 0
        }
        Item { Layout.fillHeight: true }
        UsageBar {
            Layout.fillWidth: true
            visible: metric.showsBar
            fraction: metric.fraction
            tint: metric.tinted ? "white" : metric.barColor
            track: metric.tinted ? Qt.rgba(1, 1, 1, 0.25) : Theme.withAlpha(metric.barColor, 0.15)
        }
    }
}
