import QtQuick
import QtQuick.Layouts
import Halcyra

// The run: a title, the warning not to interrupt, a bar of the engine's fraction and its latest
// text. There is no cancel: a run goes to its end.
Item {
    id: view
    property string message
    property real fraction: 0

    ColumnLayout {
        anchors.centerIn: parent
        anchors.verticalCenterOffset: -20
        width: Math.min(parent.width - 80, 480)
        spacing: 14

        Rectangle {
            Layout.alignment: Qt.AlignHCenter
            Layout.bottomMargin: 6
            implicitWidth: 76
            implicitHeight: 76
            radius: 38
            gradient: Gradient {
                GradientStop { position: 0.0; color: Theme.orange }
                GradientStop { position: 1.0; color: Theme.red }
            }
            SymbolIcon {
                anchors.centerIn: parent
                symbol: "flame.fill"
                color: "white"
                size: 36
            }
        }
        Text {
            Layout.alignment: Qt.AlignHCenter
            text: qsTr("Shredding…")
            color: Theme.primaryText
            font.pixelSize: Theme.titleSize
            font.weight: Font.Bold
        }
        Text {
            Layout.fillWidth: true
            text: qsTr("Overwriting file data. Do not interrupt.")
            color: Theme.secondaryText
            font.pixelSize: Theme.bodySize
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.WordWrap
        }
        Rectangle {
            objectName: "shredProgressBar"
            Layout.fillWidth: true
            Layout.topMargin: 8
            implicitHeight: 8
            radius: 4
            color: Theme.withAlpha(Theme.accent, 0.12)
            Rectangle {
                width: parent.width * Math.max(0, Math.min(1, view.fraction))
                height: parent.height
                radius: parent.radius
                gradient: Gradient {
                    orientation: Gradient.Horizontal
                    GradientStop { position: 0.0; color: Theme.brandLight }
                    GradientStop { position: 1.0; color: Theme.brandBlue }
                }
                Behavior on width { NumberAnimation { duration: Theme.ms(150) } }
            }
        }
        RowLayout {
            Layout.fillWidth: true
            spacing: 8
            Text {
                Layout.fillWidth: true
                text: view.message
                color: Theme.tertiaryText
                font.pixelSize: Theme.captionSize
                elide: Text.ElideMiddle
            }
            Text {
                text: Math.floor(view.fraction * 100) + "%"
                color: Theme.secondaryText
                font.pixelSize: Theme.captionSize
                font.weight: Font.DemiBold
            }
        }
    }
}
