import QtQuick
import QtQuick.Layouts
import Halcyra

// While a scan runs: the orb, what is happening, and the scan's latest status.
Item {
    id: view
    property string status

    ColumnLayout {
        anchors.centerIn: parent
        anchors.verticalCenterOffset: -20
        width: Math.min(parent.width - 60, 560)
        spacing: 6

        ScanOrbView {
            Layout.alignment: Qt.AlignHCenter
            isScanning: true
            symbol: "doc.on.doc"
            diameter: 120
        }
        Text {
            Layout.fillWidth: true
            Layout.topMargin: 4
            text: Strings.duplicates.scanning
            color: Theme.primaryText
            font.pixelSize: Theme.titleSize
            font.weight: Font.Bold
            horizontalAlignment: Text.AlignHCenter
        }
        Text {
            Layout.fillWidth: true
            text: Strings.duplicates.scanSubtitle
            color: Theme.secondaryText
            font.pixelSize: Theme.bodySize
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.WordWrap
        }
        Text {
            Layout.fillWidth: true
            visible: view.status.length > 0
            text: view.status
            color: Theme.tertiaryText
            font.pixelSize: Theme.captionSize
            horizontalAlignment: Text.AlignHCenter
            elide: Text.ElideMiddle
        }
    }
}
