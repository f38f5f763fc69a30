import QtQuick
import Halcyra

// The sub-folders of the folder on screen as rectangles whose areas follow their sizes; one
// level at a time, never grandchildren. `cells` come laid out for this view's present size (see
// DiskAnalyzerViewModel.treemapCells), each already placed, coloured and with its label
// decided; this view only draws them, all in one stack from the top left.
Item {
    id: treemap
    property var cells: []
    property var cellStyle: ({})
    signal tapped(string nodeId)

    Repeater {
        model: treemap.cells
        TreemapCell {
            required property var modelData
            layout: modelData
            cellStyle: treemap.cellStyle
            onTapped: treemap.tapped(modelData.id)
        }
    }
}
