import QtQuick
import Halcyra

// The segmented choice of overwrite passes: exactly 1, 3 or 7.
Rectangle {
    id: picker
    property int value: 3
    signal picked(int passes)

    readonly property var choices: [1, 3, 7]

    implicitWidth: segments.implicitWidth + 4
    implicitHeight: 26
    radius: 7
    color: Theme.controlBackground
    border.width: 0.5
    border.color: Theme.separator

    Row {
        id: segments
        anchors.centerIn: parent
        spacing: 0
        Repeater {
            model: picker.choices
            Rectangle {
                required property int modelData
                readonly property bool current: modelData === picker.value
                width: 36
                height: 22
                radius: 5
                color: current ? Theme.windowBackground : "transparent"
                border.width: current ? 0.5 : 0
                border.color: Qt.rgba(0, 0, 0, 0.15)
                Text {
                    anchors.centerIn: parent
                    text: parent.modelData
                    color: parent.current ? Theme.primaryText : Theme.secondaryText
                    font.pixelSize: Theme.bodySize - 1
                    font.weight: parent.current ? Font.DemiBold : Font.Normal
                }
                MouseArea {
                    anchors.fill: parent
                    cursorShape: Qt.PointingHandCursor
                    onClicked: picker.picked(parent.modelData)
                }
                Accessible.role: Accessible.RadioButton
                Accessible.name: String(modelData)
                Accessible.checked: current
                Accessible.onPressAction: picker.picked(modelData)
            }
        }
    }
}
