import QtQuick
import Halcyra

// A card of the dashboard: a rounded panel that fades in from 12 points below its place, after
// its own delay, once the first reading is there.
Item {
    id: card
    property bool entered: false
    property int entryDelay: 0
    property color fill: Theme.controlBackground
    property real progress: 0
    default property alias content: body.data

    opacity: progress
    transform: Translate { y: 12 * (1 - card.progress) }

    onEnteredChanged: if (entered) entry.restart()
    Component.onCompleted: if (entered) entry.restart()

    SequentialAnimation {
        id: entry
        PauseAnimation { duration: Theme.ms(card.entryDelay) }
        NumberAnimation {
            target: card
            property: "progress"
            to: 1
            duration: Theme.ms(450)
            easing.type: Easing.OutQuad
        }
    }

    Rectangle {
        id: body
        anchors.fill: parent
        radius: 16
        color: card.fill
        border.width: 0.5
        border.color: Theme.separator
    }
}
