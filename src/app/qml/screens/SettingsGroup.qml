import QtQuick
import QtQuick.Layouts
import Halcyra

// A titled, rounded group of the settings screen, as the platform's grouped forms draw them.
ColumnLayout {
    id: group
    property string heading
    default property alias content: body.data
    spacing: 8

    Text {
        text: group.heading
        color: Theme.primaryText
        font.pixelSize: Theme.headlineSize
        font.weight: Font.DemiBold
    }
    Rectangle {
        Layout.fillWidth: true
        implicitHeight: body.implicitHeight + 28
        radius: 10
        color: Theme.controlBackground
        border.width: 0.5
        border.color: Theme.separator
        RowLayout {
            id: body
            anchors.fill: parent
            anchors.margins: 14
            spacing: 12
        }
    }
}
