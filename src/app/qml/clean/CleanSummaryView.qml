import QtQuick
import QtQuick.Layouts
import Halcyra

// The end of a clean: what was freed, with a burst of particles as it appears.
Item {
    id: view
    property string freedText
    property int itemsCleaned
    signal scanAgain()
    signal done()

    readonly property var particleColors: [Theme.green, Theme.blue, Theme.mint, Theme.teal, Theme.cyan,
                                           Qt.rgba(0.15, 0.55, 1.0, 1)]

    ColumnLayout {
        id: content
        anchors.centerIn: parent
        anchors.verticalCenterOffset: -20
        spacing: 10

        Item {
            Layout.alignment: Qt.AlignHCenter
            implicitWidth: 96
            implicitHeight: 96
            SymbolIcon {
                id: checkmark
                anchors.centerIn: parent
                symbol: "checkmark.circle.fill"
                color: Theme.green
                size: 80
            }
            // Twenty particles from the centre, each on its own random course.
            Repeater {
                model: Theme.reduceMotion ? 0 : 20
                Rectangle {
                    id: particle
                    readonly property real angle: Math.random() * 2 * Math.PI
                    readonly property real distance: 80 + Math.random() * 100
                    readonly property real centreX: parent.width / 2
                    readonly property real centreY: parent.height / 2
                    width: 3 + Math.random() * 4
                    height: width
                    radius: width / 2
                    color: view.particleColors[Math.floor(Math.random() * view.particleColors.length)]
                    x: centreX - width / 2
                    y: centreY - height / 2
                    ParallelAnimation {
                        running: true
                        NumberAnimation {
                            target: particle; property: "x"
                            to: particle.centreX - particle.width / 2 + Math.cos(particle.angle) * particle.distance
                            duration: 800; easing.type: Easing.OutCubic
                        }
                        NumberAnimation {
                            target: particle; property: "y"
                            to: particle.centreY - particle.height / 2 + Math.sin(particle.angle) * particle.distance
                            duration: 800; easing.type: Easing.OutCubic
                        }
                        SequentialAnimation {
                            PauseAnimation { duration: 800 + Math.random() * 300 }
                            NumberAnimation { target: particle; property: "opacity"; to: 0; duration: 500 }
                        }
                    }
                }
            }
        }

        Text {
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: 6
            text: Strings.clean.summaryTitle
            color: Theme.primaryText
            font.pixelSize: Theme.titleSize + 2
            font.weight: Font.Bold
        }
        Text {
            Layout.alignment: Qt.AlignHCenter
            text: Strings.clean.freed + " " + view.freedText
            color: Theme.accent
            font.pixelSize: 28
            font.weight: Font.Bold
        }
        Text {
            Layout.alignment: Qt.AlignHCenter
            text: view.itemsCleaned + " " + qsTr("items cleaned")
            color: Theme.secondaryText
            font.pixelSize: Theme.bodySize
        }
        RowLayout {
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: 16
            spacing: 12
            ActionButton {
                Layout.preferredWidth: 130
                title: Strings.clean.scanAgain
                style: "secondary"
                onAction: view.scanAgain()
            }
            ActionButton {
                Layout.preferredWidth: 130
                title: Strings.clean.done
                style: "primary"
                onAction: view.done()
            }
        }
    }
}
