import QtQuick
import QtQuick.Layouts
import Halcyra

// The confirmation sheet of every tool: warning symbol, title, message, the tool's own detail
// block, then "Cancel" and the destructive confirm button.
Sheet {
    id: dialog
    property string title
    property string message
    property string confirmTitle
    property Component detail
    signal confirm()
    signal cancel()

    onCancelRequested: cancel()

    contentItem: ColumnLayout {
        width: 440
        spacing: 20

        Item { Layout.preferredHeight: 4 }
        SymbolIcon {
            Layout.alignment: Qt.AlignHCenter
            symbol: "exclamationmark.triangle.fill"
            color: Theme.orange
            size: 40
        }
        Text {
            Layout.alignment: Qt.AlignHCenter
            text: dialog.title
            color: Theme.primaryText
            font.pixelSize: 18
            font.weight: Font.Bold
        }
        Text {
            Layout.fillWidth: true
            Layout.leftMargin: 28
            Layout.rightMargin: 28
            text: dialog.message
            color: Theme.secondaryText
            font.pixelSize: Theme.bodySize
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.WordWrap
        }
        Loader {
            Layout.fillWidth: true
            Layout.leftMargin: 24
            Layout.rightMargin: 24
            sourceComponent: dialog.detail
            visible: dialog.detail !== null
        }
        RowLayout {
            Layout.alignment: Qt.AlignHCenter
            Layout.bottomMargin: 24
            spacing: 12
            ActionButton {
                Layout.preferredWidth: 150
                title: Strings.components.cancel
                style: "secondary"
                onAction: dialog.cancel()
            }
            ActionButton {
                Layout.preferredWidth: 150
                title: dialog.confirmTitle
                style: "destructive"
                onAction: dialog.confirm()
            }
        }
    }
}
