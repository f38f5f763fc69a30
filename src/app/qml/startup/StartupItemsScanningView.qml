import QtQuick
import QtQuick.Layouts
import Halcyra

// While the two lists are read: the circling orb, what is happening, and the latest status.
Item {
    id: view
    property string scanStatus

    ColumnLayout {
        anchors.centerIn: parent
        anchors.verticalCenterOffset: -20
        width: Math.min(parent.width - 60, 520)
        spacing: 6

        ScanOrbView {
            Layout.alignment: Qt.AlignHCenter
            isScanning: true
            symbol: "clock.arrow.2.circlepath"
            diameter: 120
        }
        Text {
            Layout.fillWidth: true
            Layout.topMargin: 4
            text: qsTr("Scanning startup items…")
            color: Theme.primaryText
            font.pixelSize: Theme.titleSize
            font.weight: Font.Bold
            horizontalAlignment: Text.AlignHCenter
        }
        Text {
            Layout.fillWidth: true
            text: qsTr("Checking login items and launch agents.")
            color: Theme.secondaryText
            font.pixelSize: Theme.bodySize
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.WordWrap
        }
        Text {
            objectName: "startupScanStatus"
            Layout.fillWidth: true
            visible: view.scanStatus.length > 0
            text: view.scanStatus
            color: Theme.tertiaryText
            font.pixelSize: Theme.captionSize
            horizontalAlignment: Text.AlignHCenter
            elide: Text.ElideMiddle
        }
    }
}
