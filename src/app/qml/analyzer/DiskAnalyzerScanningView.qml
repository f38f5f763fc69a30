import QtQuick
import QtQuick.Layouts
import Halcyra

// The analyzer while it walks: the busy orb, what it is doing and the walk's latest status.
// There is no cancel; the page stays until the walk ends.
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
            symbol: "chart.pie"
            diameter: 110
        }
        Text {
            Layout.fillWidth: true
            Layout.topMargin: 4
            text: Strings.diskAnalyzer.scanning
            color: Theme.primaryText
            font.pixelSize: Theme.titleSize
            font.weight: Font.Bold
            horizontalAlignment: Text.AlignHCenter
        }
        Text {
            Layout.fillWidth: true
            text: Strings.diskAnalyzer.scanSubtitle
            color: Theme.secondaryText
            font.pixelSize: Theme.bodySize
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.WordWrap
        }
        Text {
            objectName: "analyzerStatus"
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
