import QtQuick
import QtQuick.Shapes
import Halcyra

// A ring that tells no fraction: its arc grows and shrinks over 1.2 s while the whole ring
// turns once every 2.5 s, for as long as it shows.
Item {
    id: ring
    property real diameter: 120
    property real lineWidth: 10
    property real sweep: Theme.reduceMotion ? 250 : 60
    property bool running: visible && !Theme.reduceMotion

    implicitWidth: diameter
    implicitHeight: diameter

    Shape {
        anchors.fill: parent
        ShapePath {
            strokeColor: Theme.withAlpha(Theme.accent, 0.12)
            strokeWidth: ring.lineWidth
            fillColor: "transparent"
            PathAngleArc {
                centerX: ring.diameter / 2; centerY: ring.diameter / 2
                radiusX: (ring.diameter - ring.lineWidth) / 2; radiusY: radiusX
                startAngle: 0; sweepAngle: 360
            }
        }
    }

    Shape {
        id: arc
        anchors.fill: parent
        ShapePath {
            strokeColor: Theme.brandBlue
            strokeWidth: ring.lineWidth
            fillColor: "transparent"
            capStyle: ShapePath.RoundCap
            PathAngleArc {
                centerX: ring.diameter / 2; centerY: ring.diameter / 2
                radiusX: (ring.diameter - ring.lineWidth) / 2; radiusY: radiusX
                startAngle: -90; sweepAngle: ring.sweep
            }
        }
        RotationAnimation on rotation {
            from: 0; to: 360; duration: 2500
            loops: Animation.Infinite
            running: ring.running
        }
    }

    SequentialAnimation on sweep {
        running: ring.running
        loops: Animation.Infinite
        NumberAnimation { from: 60; to: 280; duration: 1200; easing.type: Easing.InOutQuad }
        NumberAnimation { from: 280; to: 60; duration: 1200; easing.type: Easing.InOutQuad }
    }
}
