import QtQuick
import QtQuick.Layouts
import Halcyra

// The error strip of every tool: the message and a "Retry" button.
Rectangle {
    id: banner
    property string message
    signal retry()

    implicitHeight: row.implicitHeight + 28
    radius: 12
    color: Theme.withAlpha(Theme.red, 0.06)
    border.width: 0.5
    border.color: Theme.withAlpha(Theme.red, 0.15)

    RowLayout {
        id: row
        anchors.fill: parent
        anchors.margins: 14
        spacing: 10
        SymbolIcon {
            symbol: "exclamationmark.triangle.fill"
            color: Theme.red
            size: 18
        }
        Text {
            Layout.fillWidth: true
            text: banner.message
            color: Theme.primaryText
            font.pixelSize: 13
            wrapMode: Text.WordWrap
        }
        ActionButton {
            title: Strings.components.retry
            style: "secondary"
            onAction: banner.retry()
        }
    }
}
