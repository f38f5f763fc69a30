import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Halcyra
import Halcyra.Env

// The first-run tour: ten pages, forward only. "Skip" ends it at once; the last page ends it
// and starts a scan in the cleaner.
Rectangle {
    id: tour
    property int currentPage: 0
    property bool showContent: false
    readonly property color brandBlue: Theme.brandBlue
    readonly property color brandLight: Theme.brandLight
    readonly property int totalPages: 10

    readonly property var pages: [
        { symbol: "sparkles", colors: [brandLight, brandBlue],
          title: Strings.onboarding.welcomeTitle, subtitle: Strings.onboarding.welcomeSubtitle, features: [] },
        { symbol: "trash.slash", colors: ["#34C759", "#30B0C7"], title: qsTr("Smart Cleanup"),
          subtitle: qsTr("Finds and removes system junk, app caches, browser data, and developer artifacts. Free up gigabytes of hidden clutter."),
          features: [{ symbol: "gearshape.2", text: qsTr("System caches & logs") },
                     { symbol: "globe", text: qsTr("Browser cookies & cache") },
                     { symbol: "wrench.and.screwdriver", text: qsTr("Developer build artifacts") }] },
        { symbol: "arrow.down.app", colors: ["#32ADE6", "#007AFF"], title: qsTr("App Updater"),
          subtitle: qsTr("Keep all your apps up to date in one place — App Store, Homebrew, and Sparkle apps detected automatically."),
          features: [{ symbol: "arrow.triangle.2.circlepath", text: qsTr("Checks all update sources") },
                     { symbol: "apps.iphone", text: qsTr("Update or open with one click") },
                     { symbol: "bell.badge", text: qsTr("Never miss an important update") }] },
        { symbol: "xmark.app", colors: ["#FF9500", "#FF3B30"], title: qsTr("Complete Uninstaller"),
          subtitle: qsTr("Remove apps and all their leftover files — preferences, caches, containers, and support files that apps leave behind."),
          features: [{ symbol: "app.badge.checkmark", text: qsTr("Drag & drop any app") },
                     { symbol: "folder.badge.minus", text: qsTr("Finds hidden leftover files") },
                     { symbol: "arrow.3.trianglepath", text: qsTr("Reclaim wasted space") }] },
        { symbol: "doc.on.doc", colors: ["#AF52DE", "#5856D6"], title: qsTr("Duplicate Finder"),
          subtitle: qsTr("Scan for duplicate files across your Mac and reclaim wasted space by removing identical copies."),
          features: [{ symbol: "doc.text.magnifyingglass", text: qsTr("Deep content-based matching") },
                     { symbol: "photo.on.rectangle.angled", text: qsTr("Photos, documents & more") },
                     { symbol: "externaldrive", text: qsTr("Recover valuable disk space") }] },
        { symbol: "arrow.counterclockwise.circle", colors: ["#00C7BE", "#34C759"], title: qsTr("App Resetter"),
          subtitle: qsTr("Reset any app to its factory state without reinstalling. Clears preferences, caches, and saved data in one click."),
          features: [{ symbol: "arrow.uturn.backward", text: qsTr("Restore default settings") },
                     { symbol: "lock.shield", text: qsTr("Fix broken or misbehaving apps") },
                     { symbol: "bolt.heart", text: qsTr("No need to reinstall") }] },
        { symbol: "lock.doc", colors: ["#FF2D55", "#AF52DE"], title: qsTr("Secure Shredder"),
          subtitle: qsTr("Permanently destroy sensitive files beyond recovery. Uses military-grade encryption and multi-pass overwriting."),
          features: [{ symbol: "lock.shield", text: qsTr("AES-256 encryption before deletion") },
                     { symbol: "arrow.3.trianglepath", text: qsTr("Multi-pass secure overwrite") },
                     { symbol: "xmark.bin", text: qsTr("Files become unrecoverable") }] },
        { symbol: "chart.pie", colors: ["#FFCC00", "#FF9500"], title: qsTr("Disk Space Analyzer"),
          subtitle: qsTr("Visualize exactly what's eating your disk space with an interactive treemap. Find and delete the biggest space hogs."),
          features: [{ symbol: "square.grid.2x2", text: qsTr("Interactive treemap visualization") },
                     { symbol: "magnifyingglass", text: qsTr("Drill into any folder") },
                     { symbol: "trash", text: qsTr("Delete large files directly") }] },
        { symbol: "clock.arrow.2.circlepath", colors: ["#5856D6", "#32ADE6"], title: qsTr("Startup Items Manager"),
          subtitle: qsTr("Discover and control apps and services that launch at startup. Disable unnecessary items to speed up boot time and free memory."),
          features: [{ symbol: "list.bullet.rectangle", text: qsTr("See all login items & agents") },
                     { symbol: "togglepower", text: qsTr("Enable or disable with one click") },
                     { symbol: "memorychip", text: qsTr("Reduce background memory usage") }] },
        { symbol: "magnifyingglass", colors: [brandLight, brandBlue], title: qsTr("Ready to Clean"),
          subtitle: qsTr("Let's scan your Mac and see how much space you can recover."), features: [] }
    ]

    function completeOnboarding(autoScan) {
        AppState.isOnboardingComplete = true
        if (autoScan) {
            AppState.selectedNavItem = "clean"
            AppState.shouldAutoScan = true
        }
    }

    function advance() {
        if (currentPage < totalPages - 1) currentPage += 1
    }

    color: Theme.windowBackground
    onCurrentPageChanged: stack.replace(pageComponent, { index: currentPage })
    Component.onCompleted: contentIn.start()

    // A soft wash of the brand colour behind the pages.
    Rectangle {
        anchors.fill: parent
        gradient: Gradient {
            GradientStop { position: 0.0; color: Theme.withAlpha(Theme.brandLight, 0.12) }
            GradientStop { position: 0.6; color: Theme.windowBackground }
        }
    }

    StackView {
        id: stack
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.bottom: controls.top
        opacity: 0
        initialItem: pageComponent
        replaceEnter: Transition {
            ParallelAnimation {
                NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Theme.ms(350); easing.type: Easing.InOutQuad }
                NumberAnimation { property: "x"; from: 30; to: 0; duration: Theme.ms(350); easing.type: Easing.InOutQuad }
            }
        }
        replaceExit: Transition {
            ParallelAnimation {
                NumberAnimation { property: "opacity"; from: 1; to: 0; duration: Theme.ms(350); easing.type: Easing.InOutQuad }
                NumberAnimation { property: "x"; from: 0; to: -30; duration: Theme.ms(350); easing.type: Easing.InOutQuad }
            }
        }
    }

    Component {
        id: pageComponent
        TourPage {
            page: tour.pages[index]
            isLast: index === tour.totalPages - 1
        }
    }

    ColumnLayout {
        id: controls
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        anchors.margins: 32
        spacing: 22

        Row {
            Layout.alignment: Qt.AlignHCenter
            spacing: 8
            Repeater {
                model: tour.totalPages
                Rectangle {
                    required property int index
                    readonly property bool current: index === tour.currentPage
                    width: 8
                    height: 8
                    radius: 4
                    color: current ? tour.brandBlue : Theme.withAlpha(Theme.secondaryText, 0.2)
                    scale: current ? 1.0 : 0.8
                    Behavior on scale { NumberAnimation { duration: Theme.ms(200); easing.type: Easing.InOutQuad } }
                    Behavior on color { ColorAnimation { duration: Theme.ms(200); easing.type: Easing.InOutQuad } }
                }
            }
        }

        Item {
            Layout.fillWidth: true
            implicitHeight: mainButton.implicitHeight
            Text {
                anchors.left: parent.left
                anchors.verticalCenter: parent.verticalCenter
                visible: tour.currentPage < tour.totalPages - 1
                text: qsTr("Skip")
                color: Theme.secondaryText
                font.pixelSize: Theme.bodySize
                MouseArea {
                    anchors.fill: parent
                    anchors.margins: -6
                    cursorShape: Qt.PointingHandCursor
                    onClicked: tour.completeOnboarding(false)
                }
                Accessible.role: Accessible.Button
                Accessible.name: text
            }
            ActionButton {
                id: mainButton
                anchors.right: parent.right
                width: 170
                implicitHeight: 38
                title: tour.currentPage < tour.totalPages - 1 ? qsTr("Continue") : qsTr("Start Scanning")
                symbol: tour.currentPage < tour.totalPages - 1 ? "" : "magnifyingglass"
                style: "primary"
                onAction: tour.currentPage < tour.totalPages - 1 ? tour.advance() : tour.completeOnboarding(true)
            }
        }
    }

    SequentialAnimation {
        id: contentIn
        PauseAnimation { duration: Theme.ms(100) }
        ScriptAction { script: tour.showContent = true }
        NumberAnimation { target: stack; property: "opacity"; from: 0; to: 1; duration: Theme.ms(500); easing.type: Easing.OutCubic }
    }
}
