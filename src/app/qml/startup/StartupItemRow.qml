import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Halcyra

// One startup item: its icon, name and path, and its switch. While the item's command runs a
// spinner stands in the switch's place, so it cannot be flipped twice at once. The switch
// only asks for the change; it shows what the view model says, not where it was pushed.
Rectangle {
    id: row
    // The item's roles of the list model.
    required property string itemId
    required property string name
    required property string path
    required property string iconSource
    required property bool isEnabled
    required property bool isToggling
    signal toggle()

    implicitHeight: 56
    radius: 10
    color: rowMouse.containsMouse ? Theme.controlBackground : "transparent"

    MouseArea {
        id: rowMouse
        anchors.fill: parent
        hoverEnabled: true
        acceptedButtons: Qt.NoButton
    }

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: 12
        anchors.rightMargin: 14
        spacing: 12

        Item {
            implicitWidth: 32
            implicitHeight: 32
            Image {
                id: icon
                anchors.fill: parent
                visible: row.iconSource.length > 0 && status === Image.Ready
                source: row.iconSource
                sourceSize.width: 64
                sourceSize.height: 64
                fillMode: Image.PreserveAspectFit
                asynchronous: true
            }
            Rectangle {
                anchors.fill: parent
                visible: !icon.visible
                radius: 8
                color: Theme.withAlpha(Theme.accent, 0.1)
                SymbolIcon {
                    anchors.centerIn: parent
                    symbol: "app.fill"
                    color: Theme.accent
                    size: 18
                }
            }
        }

        ColumnLayout {
            Layout.fillWidth: true
            spacing: 2
            Text {
                Layout.fillWidth: true
                text: row.name
                color: Theme.primaryText
                font.pixelSize: Theme.bodySize
                font.weight: Font.DemiBold
                elide: Text.ElideRight
            }
            Text {
                Layout.fillWidth: true
                text: row.path
                color: Theme.secondaryText
                font.pixelSize: Theme.captionSize
                elide: Text.ElideMiddle
                maximumLineCount: 1
            }
        }

        BusyIndicator {
            objectName: "startupRowSpinner"
            Layout.preferredWidth: 24
            Layout.preferredHeight: 24
            visible: row.isToggling
            running: visible
        }
        Text {
            visible: !row.isToggling
            text: row.isEnabled ? qsTr("Enabled") : qsTr("Disabled")
            color: row.isEnabled ? Theme.green : Theme.secondaryText
            font.pixelSize: Theme.captionSize
            font.weight: Font.DemiBold
        }
        Rectangle {
            id: toggleSwitch
            objectName: "startupRowSwitch"
            visible: !row.isToggling
            implicitWidth: 32
            implicitHeight: 18
            radius: 9
            color: row.isEnabled ? Theme.green : Qt.rgba(0, 0, 0, 0.15)
            Accessible.role: Accessible.CheckBox
            Accessible.name: row.name
            Accessible.checked: row.isEnabled
            Behavior on color { ColorAnimation { duration: Theme.ms(150) } }
            Rectangle {
                width: 14
                height: 14
                radius: 7
                y: 2
                x: row.isEnabled ? parent.width - width - 2 : 2
                color: "white"
                border.width: 0.5
                border.color: Qt.rgba(0, 0, 0, 0.1)
                Behavior on x { NumberAnimation { duration: Theme.ms(150) } }
            }
            MouseArea {
                anchors.fill: parent
                cursorShape: Qt.PointingHandCursor
                onClicked: row.toggle()
            }
        }
    }
}
