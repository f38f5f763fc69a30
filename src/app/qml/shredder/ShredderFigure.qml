import QtQuick
import QtQuick.Layouts
import Halcyra

// A large figure above a small label, as the confirmation and the summary show them.
ColumnLayout {
    property string value
    property string label
    property color tint: Theme.primaryText
    spacing: 0
    Text {
        Layout.alignment: Qt.AlignHCenter
        text: parent.value
        color: parent.tint
        font.pixelSize: 26
        font.weight: Font.Bold
    }
    Text {
        Layout.alignment: Qt.AlignHCenter
        text: parent.label
        color: Theme.secondaryText
        font.pixelSize: Theme.captionSize + 1
    }
}
