import QtQuick
import QtQuick.Layouts
import Halcyra

// Before a scan: the orb, what the tool does, and "Scan".
Item {
    id: view
    signal scan()

    ColumnLayout {
        anchors.centerIn: parent
        anchors.verticalCenterOffset: -20
        width: Math.min(parent.width - 60, 520)
        spacing: 6

        ScanOrbView {
            Layout.alignment: Qt.AlignHCenter
            isScanning: false
            symbol: "clock.arrow.2.circlepath"
            diameter: 120
        }
        Text {
            Layout.fillWidth: true
            Layout.topMargin: 4
            text: qsTr("Startup Items")
            color: Theme.primaryText
            font.pixelSize: Theme.titleSize
            font.weight: Font.Bold
            horizontalAlignment: Text.AlignHCenter
        }
        Text {
            Layout.fillWidth: true
            text: qsTr("Discover and manage apps and services that launch automatically when you start your Mac.")
            color: Theme.secondaryText
            font.pixelSize: Theme.bodySize
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.WordWrap
        }
        ActionButton {
            objectName: "startupScanButton"
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: 22
            Layout.preferredWidth: 160
            Layout.preferredHeight: 38
            title: qsTr("Scan")
            symbol: "magnifyingglass"
            style: "primary"
            onAction: view.scan()
        }
    }
}
