import QtQuick
import QtQuick.Controls
import Halcyra

// One rectangle of the treemap: a rounded box in its palette colour, brighter under the
// pointer, outlined inside; the name and the size when the cell is large enough for them, and
// the name with the size as a tooltip whatever its size.
Item {
    id: cell
    property var layout: ({})
    property var cellStyle: ({})
    readonly property bool isHovered: mouse.containsMouse
    signal tapped()

    x: layout.x
    y: layout.y
    width: layout.width
    height: layout.height

    Rectangle {
        anchors.fill: parent
        radius: cell.cellStyle.cornerRadius
        color: Theme.withAlpha(cell.layout.color,
                               cell.isHovered ? cell.cellStyle.hoveredOpacity : cell.cellStyle.restingOpacity)
        border.width: cell.cellStyle.borderWidth
        border.color: Theme.withAlpha(cell.layout.color, cell.cellStyle.borderOpacity)
    }

    // Folders can have thousands of sub-folders, most too small for a label: only cells that
    // show one make its texts.
    Loader {
        active: cell.layout.showsLabel
        anchors.centerIn: parent
        width: Math.max(parent.width - 2 * cell.cellStyle.labelPadding, 0)
        sourceComponent: Column {
            spacing: cell.cellStyle.labelSpacing
            Text {
                width: parent.width
                text: cell.layout.name
                color: "white"
                font.pixelSize: Math.max(Math.round(cell.layout.nameFontSize), 1)
                font.weight: Font.Medium
                horizontalAlignment: Text.AlignHCenter
                elide: Text.ElideRight
            }
            Text {
                width: parent.width
                visible: cell.layout.showsSizeLine
                text: cell.layout.sizeText
                color: "white"
                opacity: cell.cellStyle.sizeLineOpacity
                font.family: "monospace"
                font.pixelSize: Math.max(Math.round(cell.layout.sizeFontSize), 1)
                horizontalAlignment: Text.AlignHCenter
                elide: Text.ElideRight
            }
        }
    }

    MouseArea {
        id: mouse
        anchors.fill: parent
        hoverEnabled: true
        cursorShape: Qt.PointingHandCursor
        onClicked: cell.tapped()
    }

    ToolTip.visible: isHovered
    ToolTip.delay: 600
    ToolTip.text: layout.tooltip
    Accessible.role: Accessible.Button
    Accessible.name: layout.tooltip
}
