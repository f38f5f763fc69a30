import QtQuick
import QtQuick.Controls
import Halcyra

// A modal sheet over the window. Its presence is bound by the screen that owns it (`shown`);
// it never closes by itself: Escape and the buttons call back, and the owner decides.
Popup {
    id: sheet
    property bool shown: false
    signal cancelRequested()

    visible: shown
    modal: true
    focus: true
    closePolicy: Popup.NoAutoClose
    parent: Overlay.overlay
    anchors.centerIn: Overlay.overlay
    padding: 0

    Overlay.modal: Rectangle { color: Qt.rgba(0, 0, 0, 0.25) }

    background: Rectangle {
        radius: 12
        color: Theme.windowBackground
        border.width: 0.5
        border.color: Qt.rgba(0, 0, 0, 0.2)
        // A soft drop shadow: a few widening translucent outlines.
        Repeater {
            model: 4
            Rectangle {
                required property int index
                z: -1
                anchors.fill: parent
                anchors.margins: -(index + 1) * 2
                anchors.topMargin: -(index + 1) * 1
                radius: 12 + (index + 1) * 2
                color: "transparent"
                border.width: 2
                border.color: Qt.rgba(0, 0, 0, 0.05 - index * 0.01)
            }
        }
    }

    enter: Transition {
        NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Theme.ms(180); easing.type: Easing.OutCubic }
        NumberAnimation { property: "scale"; from: 0.96; to: 1; duration: Theme.ms(180); easing.type: Easing.OutCubic }
    }
    exit: Transition {
        NumberAnimation { property: "opacity"; from: 1; to: 0; duration: Theme.ms(120) }
    }

    Shortcut {
        sequence: StandardKey.Cancel
        enabled: sheet.visible
        onActivated: sheet.cancelRequested()
    }
}
