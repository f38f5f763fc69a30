import QtQuick
import QtQuick.Layouts
import Halcyra

// The cleaner's first page, idle or scanning: the orb, a title, and either the six pills and
// the scan button or the scan's latest status. The parts come in one after the other.
Item {
    id: view
    property bool isScanning: false
    property string status
    signal scan()

    // Decoration only: what a scan looks at, not a choice.
    readonly property var scanTargets: [
        { label: qsTr("System"), symbol: "gearshape.2" },
        { label: qsTr("User"), symbol: "person.crop.circle" },
        { label: qsTr("Browsers"), symbol: "globe" },
        { label: qsTr("Developer"), symbol: "wrench.and.screwdriver" },
        { label: qsTr("Editors"), symbol: "chevron.left.forwardslash.chevron.right" },
        { label: qsTr("Apps"), symbol: "square.grid.2x2" }
    ]

    Component.onCompleted: runEntryAnimation()

    function runEntryAnimation() {
        orbIn.restart()
        titleIn.restart()
        pillsIn.restart()
        buttonIn.restart()
    }

    ColumnLayout {
        anchors.centerIn: parent
        anchors.verticalCenterOffset: -20
        width: Math.min(parent.width - 60, 560)
        spacing: 0

        ScanOrbView {
            id: orb
            Layout.alignment: Qt.AlignHCenter
            isScanning: view.isScanning
            symbol: view.isScanning ? "magnifyingglass" : "sparkles"
            diameter: 120
            opacity: 0
        }

        ColumnLayout {
            id: titleBlock
            Layout.fillWidth: true
            Layout.topMargin: 4
            spacing: 6
            opacity: 0
            Text {
                Layout.fillWidth: true
                text: view.isScanning ? Strings.clean.scanning : qsTr("Find and remove files that are clogging up your Mac.")
                color: Theme.primaryText
                font.pixelSize: view.isScanning ? Theme.titleSize : 17
                font.weight: view.isScanning ? Font.Bold : Font.DemiBold
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.WordWrap
            }
            Text {
                Layout.fillWidth: true
                visible: view.isScanning
                text: Strings.clean.scanSubtitle
                color: Theme.secondaryText
                font.pixelSize: Theme.bodySize
                horizontalAlignment: Text.AlignHCenter
            }
            Text {
                Layout.fillWidth: true
                visible: view.isScanning && view.status.length > 0
                text: view.status
                color: Theme.tertiaryText
                font.pixelSize: Theme.captionSize
                horizontalAlignment: Text.AlignHCenter
                elide: Text.ElideMiddle
            }
        }

        Flow {
            id: pills
            Layout.alignment: Qt.AlignHCenter
            Layout.preferredWidth: Math.min(implicitWidthHint, view.width - 60)
            Layout.topMargin: 22
            visible: !view.isScanning
            spacing: 8
            opacity: 0
            // The width that fits all pills on one line.
            property real implicitWidthHint: 6 * 104
            Repeater {
                model: view.scanTargets
                Rectangle {
                    required property var modelData
                    width: pillRow.implicitWidth + 22
                    height: 28
                    radius: 14
                    color: Theme.controlBackground
                    border.width: 0.5
                    border.color: Theme.separator
                    Row {
                        id: pillRow
                        anchors.centerIn: parent
                        spacing: 5
                        SymbolIcon {
                            anchors.verticalCenter: parent.verticalCenter
                            symbol: modelData.symbol
                            color: Theme.accent
                            size: 13
                        }
                        Text {
                            anchors.verticalCenter: parent.verticalCenter
                            text: modelData.label
                            color: Theme.primaryText
                            font.pixelSize: Theme.captionSize + 1
                        }
                    }
                }
            }
        }

        ActionButton {
            id: scanButton
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: 24
            Layout.preferredWidth: 180
            Layout.preferredHeight: 38
            visible: !view.isScanning
            title: Strings.clean.scanButton
            style: "primary"
            opacity: 0
            onAction: view.scan()
        }
    }

    SequentialAnimation {
        id: orbIn
        PauseAnimation { duration: Theme.ms(50) }
        ParallelAnimation {
            NumberAnimation { target: orb; property: "opacity"; from: 0; to: 1; duration: Theme.ms(600); easing.type: Easing.OutCubic }
            NumberAnimation { target: orb; property: "scale"; from: 0.8; to: 1; duration: Theme.ms(600); easing.type: Easing.OutCubic }
        }
    }
    SequentialAnimation {
        id: titleIn
        PauseAnimation { duration: Theme.ms(200) }
        NumberAnimation { target: titleBlock; property: "opacity"; from: 0; to: 1; duration: Theme.ms(450); easing.type: Easing.OutCubic }
    }
    SequentialAnimation {
        id: pillsIn
        PauseAnimation { duration: Theme.ms(350) }
        NumberAnimation { target: pills; property: "opacity"; from: 0; to: 1; duration: Theme.ms(450); easing.type: Easing.OutCubic }
    }
    SequentialAnimation {
        id: buttonIn
        PauseAnimation { duration: Theme.ms(500) }
        NumberAnimation { target: scanButton; property: "opacity"; from: 0; to: 1; duration: Theme.ms(450); easing.type: Easing.OutCubic }
    }
}
