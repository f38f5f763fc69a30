import QtQuick
import QtQuick.Layouts
import Halcyra
import Halcyra.Env

// The about sheet: symbol, name, version, what the program is, its links, and the open-source
// notices behind a second sheet.
Item {
    id: about
    property bool shown: false
    property bool showLicenses: false
    signal done

    Sheet {
        shown: about.shown
        onCancelRequested: {
            if (!about.showLicenses)
                about.done()
        }

        contentItem: ColumnLayout {
            width: 400
            spacing: 10

            SymbolIcon {
                Layout.alignment: Qt.AlignHCenter
                Layout.topMargin: 28
                symbol: "sparkles"
                color: Theme.brandLight
                gradientEnd: Theme.brandBlue
                size: 64
            }
            Text {
                Layout.alignment: Qt.AlignHCenter
                text: AppInfo.name
                color: Theme.primaryText
                font.pixelSize: 24
                font.weight: Font.Bold
            }
            Text {
                Layout.alignment: Qt.AlignHCenter
                text: AppInfo.version
                color: Theme.secondaryText
                font.pixelSize: Theme.bodySize
            }
            Text {
                Layout.fillWidth: true
                Layout.leftMargin: 32
                Layout.rightMargin: 32
                text: Strings.about.appDescription
                color: Theme.primaryText
                font.pixelSize: Theme.bodySize
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.WordWrap
            }
            RowLayout {
                Layout.alignment: Qt.AlignHCenter
                Layout.topMargin: 4
                spacing: 20
                LinkLabel {
                    symbol: "globe"
                    text: AppInfo.websiteLabel
                    url: AppInfo.website
                }
                LinkLabel {
                    symbol: "at"
                    text: qsTr("Follow on X")
                    url: AppInfo.socialUrl
                }
            }
            Rectangle {
                Layout.fillWidth: true
                Layout.topMargin: 8
                Layout.leftMargin: 24
                Layout.rightMargin: 24
                Layout.preferredHeight: 1
                color: Theme.separator
            }
            ActionButton {
                Layout.alignment: Qt.AlignHCenter
                Layout.topMargin: 4
                title: Strings.settings.openSourceLicenses
                style: "secondary"
                onAction: about.showLicenses = true
            }
            ActionButton {
                Layout.alignment: Qt.AlignHCenter
                Layout.preferredWidth: 120
                Layout.bottomMargin: 24
                title: qsTr("Done")
                style: "primary"
                onAction: about.done()
            }
        }
    }

    LicensesView {
        objectName: "licensesSheet"
        shown: about.shown && about.showLicenses
        onDone: about.showLicenses = false
    }
}
