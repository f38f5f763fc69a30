import QtQuick
import QtQuick.Layouts
import Halcyra

// A tool's title and subtitle at the top of its screen.
ColumnLayout {
    property string title
    property string subtitle
    spacing: 2
    Text {
        text: parent.title
        color: Theme.primaryText
        font.pixelSize: Theme.titleSize
        font.weight: Font.Bold
    }
    Text {
        visible: text.length > 0
        text: parent.subtitle
        color: Theme.secondaryText
        font.pixelSize: Theme.bodySize
    }
}
