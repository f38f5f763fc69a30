import QtQuick
import QtQuick.Layouts
import Halcyra

// Asks for Full Disk Access and opens the Privacy page of System Settings. It has no way to be
// dismissed: the preview drops it once the permission is there.
Rectangle {
    id: banner
    implicitHeight: row.implicitHeight + 24
    radius: 12
    color: Theme.withAlpha(Theme.orange, 0.08)
    border.width: 0.5
    border.color: Theme.withAlpha(Theme.orange, 0.4)

    RowLayout {
        id: row
        anchors.fill: parent
        anchors.margins: 12
        spacing: 12
        SymbolIcon {
            symbol: "lock.shield.fill"
            color: Theme.orange
            size: 24
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 2
            Text {
                Layout.fillWidth: true
                text: qsTr("Grant Full Disk Access to find more junk")
                color: Theme.orange
                font.pixelSize: Theme.bodySize
                font.weight: Font.DemiBold
                elide: Text.ElideRight
            }
            Text {
                Layout.fillWidth: true
                text: qsTr("System caches, logs, and message data can't be scanned without permission.")
                color: Theme.withAlpha(Theme.orange, 0.85)
                font.pixelSize: Theme.captionSize + 1
                wrapMode: Text.WordWrap
            }
        }
        Rectangle {
            implicitWidth: grant.implicitWidth + 24
            implicitHeight: 28
            radius: 7
            color: grantMouse.pressed ? Qt.darker(Theme.orange, 1.15) : Theme.orange
            Text {
                id: grant
                anchors.centerIn: parent
                text: qsTr("Grant Access…")
                color: "white"
                font.pixelSize: Theme.bodySize - 1
                font.weight: Font.DemiBold
            }
            MouseArea {
                id: grantMouse
                anchors.fill: parent
                cursorShape: Qt.PointingHandCursor
                onClicked: Qt.openUrlExternally("x-apple.systempreferences:com.apple.preference.security?Privacy_AllFiles")
            }
            Accessible.role: Accessible.Button
            Accessible.name: grant.text
        }
    }
}
