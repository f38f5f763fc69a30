import QtQuick
import QtQuick.Layouts
import QtQuick.Shapes
import Halcyra

// The shredder's first page: what shredding does in three steps, the pickers, and a drop zone
// that lights up while files are dragged over it. The parts come in one after the other.
Item {
    id: view
    property bool isTargeted: false
    property bool isResolving: false
    signal pickFiles()
    signal pickFolder()

    readonly property var steps: [
        { title: qsTr("Encrypt"), text: qsTr("AES-256 encryption with a key that's immediately discarded"),
          symbol: "lock.shield.fill", tint: Theme.blue },
        { title: qsTr("Overwrite"), text: qsTr("Multiple passes of random data written over the encrypted file"),
          symbol: "arrow.trianglehead.2.counterclockwise", tint: Theme.orange },
        { title: qsTr("Destroy"), text: qsTr("File is renamed, truncated, deleted, and freed space is filled"),
          symbol: "flame.fill", tint: Theme.red }
    ]

    Component.onCompleted: {
        iconIn.restart()
        titleIn.restart()
        stepsIn.restart()
        buttonIn.restart()
    }

    // The drop zone: a dashed outline that fills with the accent while a drag hovers.
    Rectangle {
        id: zone
        anchors.fill: parent
        anchors.leftMargin: 28
        anchors.rightMargin: 28
        anchors.bottomMargin: 24
        radius: 16
        color: view.isTargeted ? Theme.withAlpha(Theme.accent, 0.08) : "transparent"
        Behavior on color { ColorAnimation { duration: Theme.ms(150) } }
        Shape {
            anchors.fill: parent
            ShapePath {
                strokeColor: view.isTargeted ? Theme.accent : Theme.separator
                strokeWidth: view.isTargeted ? 2 : 1.5
                strokeStyle: ShapePath.DashLine
                dashPattern: [5, 4]
                fillColor: "transparent"
                startX: zone.radius; startY: 1
                PathLine { x: zone.width - zone.radius; y: 1 }
                PathArc { x: zone.width - 1; y: zone.radius; radiusX: zone.radius - 1; radiusY: zone.radius - 1 }
                PathLine { x: zone.width - 1; y: zone.height - zone.radius }
                PathArc { x: zone.width - zone.radius; y: zone.height - 1; radiusX: zone.radius - 1; radiusY: zone.radius - 1 }
                PathLine { x: zone.radius; y: zone.height - 1 }
                PathArc { x: 1; y: zone.height - zone.radius; radiusX: zone.radius - 1; radiusY: zone.radius - 1 }
                PathLine { x: 1; y: zone.radius }
                PathArc { x: zone.radius; y: 1; radiusX: zone.radius - 1; radiusY: zone.radius - 1 }
            }
        }
    }

    ColumnLayout {
        anchors.centerIn: zone
        width: Math.min(zone.width - 48, 640)
        spacing: 0

        Rectangle {
            id: icon
            Layout.alignment: Qt.AlignHCenter
            implicitWidth: 76
            implicitHeight: 76
            radius: 38
            opacity: 0
            gradient: Gradient {
                GradientStop { position: 0.0; color: Theme.orange }
                GradientStop { position: 1.0; color: Theme.red }
            }
            SymbolIcon {
                anchors.centerIn: parent
                symbol: "lock.doc"
                color: "white"
                size: 36
            }
        }

        ColumnLayout {
            id: titleBlock
            Layout.fillWidth: true
            Layout.topMargin: 14
            spacing: 8
            opacity: 0
            Text {
                Layout.fillWidth: true
                text: qsTr("Secure File Shredder")
                color: Theme.primaryText
                font.pixelSize: Theme.titleSize
                font.weight: Font.Bold
                horizontalAlignment: Text.AlignHCenter
            }
            Text {
                Layout.fillWidth: true
                Layout.leftMargin: 24
                Layout.rightMargin: 24
                text: qsTr("Permanently destroy files so they can never be recovered — not even with forensic recovery software. Unlike regular deletion, shredded files are gone forever.")
                color: Theme.secondaryText
                font.pixelSize: Theme.bodySize
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.WordWrap
                lineHeight: 1.15
            }
        }

        Rectangle {
            id: stepsCard
            Layout.fillWidth: true
            Layout.topMargin: 22
            implicitHeight: stepsRow.implicitHeight + 28
            radius: 12
            color: Theme.controlBackground
            border.width: 0.5
            border.color: Theme.separator
            opacity: 0

            RowLayout {
                id: stepsRow
                anchors.fill: parent
                anchors.margins: 14
                spacing: 0
                Repeater {
                    model: view.steps
                    RowLayout {
                        required property var modelData
                        required property int index
                        Layout.fillWidth: true
                        Layout.fillHeight: true
                        Layout.preferredWidth: 1
                        spacing: 0
                        Rectangle {
                            visible: index > 0
                            Layout.preferredWidth: 1
                            Layout.fillHeight: true
                            color: Theme.separator
                        }
                        ColumnLayout {
                            Layout.fillWidth: true
                            Layout.alignment: Qt.AlignTop
                            Layout.leftMargin: 12
                            Layout.rightMargin: 12
                            spacing: 6
                            SymbolIcon {
                                Layout.alignment: Qt.AlignHCenter
                                symbol: modelData.symbol
                                color: modelData.tint
                                size: 24
                            }
                            Text {
                                Layout.fillWidth: true
                                text: modelData.title
                                color: Theme.primaryText
                                font.pixelSize: Theme.bodySize
                                font.weight: Font.DemiBold
                                horizontalAlignment: Text.AlignHCenter
                            }
                            Text {
                                Layout.fillWidth: true
                                text: modelData.text
                                color: Theme.secondaryText
                                font.pixelSize: Theme.captionSize
                                horizontalAlignment: Text.AlignHCenter
                                wrapMode: Text.WordWrap
                            }
                        }
                    }
                }
            }
        }

        ColumnLayout {
            id: buttonBlock
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: 24
            spacing: 10
            opacity: 0
            RowLayout {
                Layout.alignment: Qt.AlignHCenter
                spacing: 10
                ActionButton {
                    objectName: "selectFilesButton"
                    Layout.preferredWidth: 160
                    Layout.preferredHeight: 38
                    title: qsTr("Select Files…")
                    style: "primary"
                    onAction: view.pickFiles()
                }
                ActionButton {
                    Layout.preferredHeight: 38
                    title: qsTr("Select Folder…")
                    symbol: "folder"
                    style: "secondary"
                    onAction: view.pickFolder()
                }
            }
            Text {
                Layout.alignment: Qt.AlignHCenter
                text: view.isResolving ? qsTr("Adding files…") : qsTr("or drag and drop files here")
                color: view.isTargeted ? Theme.accent : Theme.tertiaryText
                font.pixelSize: Theme.captionSize + 1
            }
        }
    }

    SequentialAnimation {
        id: iconIn
        PauseAnimation { duration: Theme.ms(50) }
        ParallelAnimation {
            NumberAnimation { target: icon; property: "opacity"; from: 0; to: 1; duration: Theme.ms(500); easing.type: Easing.OutCubic }
            NumberAnimation { target: icon; property: "scale"; from: 0.8; to: 1; duration: Theme.ms(500); easing.type: Easing.OutCubic }
        }
    }
    SequentialAnimation {
        id: titleIn
        PauseAnimation { duration: Theme.ms(200) }
        NumberAnimation { target: titleBlock; property: "opacity"; from: 0; to: 1; duration: Theme.ms(450); easing.type: Easing.OutCubic }
    }
    SequentialAnimation {
        id: stepsIn
        PauseAnimation { duration: Theme.ms(350) }
        NumberAnimation { target: stepsCard; property: "opacity"; from: 0; to: 1; duration: Theme.ms(450); easing.type: Easing.OutCubic }
    }
    SequentialAnimation {
        id: buttonIn
        PauseAnimation { duration: Theme.ms(500) }
        NumberAnimation { target: buttonBlock; property: "opacity"; from: 0; to: 1; duration: Theme.ms(450); easing.type: Easing.OutCubic }
    }
}
