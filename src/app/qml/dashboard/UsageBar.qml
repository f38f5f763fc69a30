import QtQuick
import Halcyra

// A thin bar filled to `fraction` (already held to 0..1).
Rectangle {
    id: bar
    property real fraction: 0
    property color tint: Theme.accent
    property color track: Theme.withAlpha(Theme.accent, 0.15)

    implicitHeight: 6
    radius: height / 2
    color: track
    Rectangle {
        width: parent.width * bar.fraction
        height: parent.height
        radius: parent.radius
        color: bar.tint
        Behavior on width { NumberAnimation { duration: Theme.ms(400); easing.type: Easing.InOutQuad } }
    }
}
