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
    default property alias extra: extraRow.data

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 14
        spacing: 3
        RowLayout {
            spacing: 6
            SymbolIcon { symbol: metric.symbol; color: metric.symbolColor; size: 16 }
            Text {
                Layout.fillWidth: true
                text: metric.title
                color: Theme.secondaryText
                font.pixelSize: Theme.bodySize
                font.weight: Font.DemiBold
                elide: Text.ElideRight
            }
        }
        RowLayout {
            spacing: 8
            Text {
                text: metric.value
                color: metric.valueColor
                font.pixelSize: 22
                font.weight: Font.Bold
            }
            Text {
                Layout.alignment: Qt.AlignBaseline
                Layout.fillWidth: true
                visible: !metric.detailBelow
                text: metric.detail
                color: Theme.secondaryText
                font.pixelSize: Theme.bodySize
                elide: Text.ElideRight
            }
        }
        Text {
            Layout.fillWidth: true
            visible: metric.detailBelow
            text: metric.detail
            color: Theme.secondaryText
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
            tint: metric.barColor
            track: Theme.withAlpha(metric.barColor, 0.15)
        }
    }
}
