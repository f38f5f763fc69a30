import QtQuick
import QtQuick.Shapes
import Halcyra

// The glowing orb of the scan screens. While `isScanning` its glow breathes and a bright arc
// circles it.
Item {
    id: orb
    property bool isScanning: false
    property string symbol: "sparkles"
    property real diameter: 150
    readonly property bool animating: isScanning && visible && !Theme.reduceMotion

    implicitWidth: diameter * 1.5
    implicitHeight: diameter * 1.5

    Shape {
        id: glow
        anchors.centerIn: parent
        width: orb.diameter * 1.5
        height: width
        ShapePath {
            strokeColor: "transparent"
            fillGradient: RadialGradient {
                centerX: glow.width / 2; centerY: glow.height / 2
                centerRadius: glow.width / 2
                focalX: centerX; focalY: centerY
                GradientStop { position: 0.45; color: Theme.withAlpha(Theme.brandBlue, 0.35) }
                GradientStop { position: 1.0; color: Theme.withAlpha(Theme.brandBlue, 0.0) }
            }
            PathAngleArc {
                centerX: glow.width / 2; centerY: glow.height / 2
                radiusX: glow.width / 2; radiusY: radiusX
                startAngle: 0; sweepAngle: 360
            }
        }
        SequentialAnimation on scale {
            running: orb.animating
            loops: Animation.Infinite
            NumberAnimation { from: 1.0; to: 1.12; duration: 1100; easing.type: Easing.InOutSine }
            NumberAnimation { from: 1.12; to: 1.0; duration: 1100; easing.type: Easing.InOutSine }
        }
    }

    Rectangle {
        id: body
        anchors.centerIn: parent
        width: orb.diameter
        height: width
        radius: width / 2
        gradient: Gradient {
            GradientStop { position: 0.0; color: Theme.brandLight }
            GradientStop { position: 1.0; color: Theme.brandBlue }
        }
        // The sheen of a lit sphere.
        Rectangle {
            x: parent.width * 0.24
            y: parent.height * 0.07
            width: parent.width * 0.52
            height: parent.height * 0.3
            radius: height / 2
            gradient: Gradient {
                GradientStop { position: 0.0; color: Qt.rgba(1, 1, 1, 0.32) }
                GradientStop { position: 1.0; color: Qt.rgba(1, 1, 1, 0.0) }
            }
        }
        SymbolIcon {
            anchors.centerIn: parent
            symbol: orb.symbol
            color: "white"
            size: orb.diameter * 0.38
        }
    }

    Shape {
        id: orbit
        anchors.centerIn: parent
        width: orb.diameter + 22
        height: width
        visible: orb.isScanning
        ShapePath {
            strokeColor: Theme.withAlpha(Theme.brandLight, 0.9)
            strokeWidth: 3
            fillColor: "transparent"
            capStyle: ShapePath.RoundCap
            PathAngleArc {
                centerX: orbit.width / 2; centerY: orbit.height / 2
                radiusX: orbit.width / 2 - 2; radiusY: radiusX
                startAngle: -90; sweepAngle: 90
            }
        }
        RotationAnimation on rotation {
            from: 0; to: 360; duration: 1600
            loops: Animation.Infinite
            running: orb.animating
        }
    }
}
