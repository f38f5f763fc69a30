import QtQuick
import QtQuick.Layouts
import QtQuick.Shapes
import Halcyra

// The health score: a ring on the score's gradient, the word beside it and the machine's name.
DashboardCard {
    id: health
    property var viewModel
    property int score: 0
    property string hostName
    readonly property var colours: viewModel.healthGradient(score)
    fill: "transparent"

    // A soft shadow in the gradient's own colour.
    Rectangle {
        x: 0; y: 4
        width: parent.width
        height: parent.height
        radius: 16
        color: Theme.withAlpha(health.colours[0], 0.3)
    }
    Rectangle {
        anchors.fill: parent
        radius: 16
        gradient: Gradient {
            orientation: Gradient.Horizontal
            GradientStop { position: 0; color: health.colours[0] }
            GradientStop { position: 1; color: health.colours[1] }
        }
    }

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: 16
        anchors.rightMargin: 16
        spacing: 18

        Item {
            id: ring
            objectName: "healthRing"
            implicitWidth: 90
            implicitHeight: 90
            property real sweep: 360 * Math.max(0, Math.min(1, health.score / 100))
            Behavior on sweep { NumberAnimation { duration: Theme.ms(800); easing.type: Easing.InOutQuad } }

            Shape {
                anchors.fill: parent
                layer.enabled: true
                layer.samples: 4
                ShapePath {
                    strokeColor: Qt.rgba(1, 1, 1, 0.3)
                    strokeWidth: 8
                    fillColor: "transparent"
                    PathAngleArc { centerX: 45; centerY: 45; radiusX: 41; radiusY: 41; startAngle: 0; sweepAngle: 360 }
                }
                ShapePath {
                    strokeColor: "white"
                    strokeWidth: 8
                    fillColor: "transparent"
                    capStyle: ShapePath.RoundCap
                    PathAngleArc { centerX: 45; centerY: 45; radiusX: 41; radiusY: 41; startAngle: -90; sweepAngle: ring.sweep }
                }
            }
            Text {
                anchors.centerIn: parent
                text: health.score
                color: "white"
                font.pixelSize: 26
                font.weight: Font.Bold
            }
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 2
            Text {
                text: health.viewModel.healthWord(health.score)
                color: "white"
                font.pixelSize: 22
                font.weight: Font.Bold
            }
            Text {
                Layout.fillWidth: true
                text: health.hostName
                color: Qt.rgba(1, 1, 1, 0.7)
                font.pixelSize: Theme.bodySize
                elide: Text.ElideRight
            }
        }
    }
}
