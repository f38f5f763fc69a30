import QtQuick
import QtQuick.Layouts
import Halcyra
import Halcyra.Env

// What the confirmation is about to destroy: the selected size and the number of files.
RowLayout {
    spacing: 40

    Item { Layout.fillWidth: true }
    ShredderFigure {
        objectName: "confirmSize"
        value: ShredderViewModel.totalSizeText
        label: qsTr("to destroy")
    }
    ShredderFigure {
        value: ShredderViewModel.selectedCount
        label: qsTr("files shredded")
    }
    Item { Layout.fillWidth: true }
}
