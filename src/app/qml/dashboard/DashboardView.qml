import QtQuick
import QtQuick.Layouts
import Halcyra
import Halcyra.Env

// The dashboard: the machine's health and figures, read at once and every five seconds while
// this screen shows, the lifetime figures of the statistics service, and Quick Clean. The
// screen makes its own view model each time it appears; the readings' provider is shared.
Item {
    id: dashboard
    objectName: "dashboardView"
    property bool entered: false
    readonly property var status: dashboardModel.status
    // Derived from the snapshot itself, so no binding sees the flag before the figures.
    readonly property bool hasStatus: status.healthScore !== undefined

    DashboardViewModel {
        id: dashboardModel
        objectName: "dashboardViewModel"
    }

    Component.onCompleted: {
        dashboardModel.startPolling(SystemMetricsProvider, DebugLogger)
        dashboardModel.fetchLifetimeStats(Statistics)
    }
    Component.onDestruction: dashboardModel.stopPolling()

    // The first reading lets the cards in, a moment after it arrives.
    onHasStatusChanged: if (hasStatus && !entered) entryDelay.restart()
    Timer {
        id: entryDelay
        interval: Theme.ms(100)
        onTriggered: dashboard.entered = true
    }

    Connections {
        target: AppState
        function onRefreshFlagChanged() { dashboardModel.fetchStatus(SystemMetricsProvider, DebugLogger) }
    }

    function batteryColor(percentage, charging) {
        const name = dashboardModel.batteryColorName(percentage, charging)
        return name === "green" ? Theme.green : name === "orange" ? Theme.orange : Theme.red
    }

    Flickable {
        anchors.fill: parent
        contentHeight: column.implicitHeight + 44
        boundsBehavior: Flickable.StopAtBounds
        clip: true

        ColumnLayout {
            id: column
            x: 28
            y: 22
            width: dashboard.width - 56
            spacing: 10

            ScreenHeader {
                Layout.bottomMargin: 4
                title: qsTr("Dashboard")
                subtitle: qsTr("System health overview")
            }

            ErrorBanner {
                objectName: "dashboardError"
                Layout.fillWidth: true
                visible: dashboardModel.errorText.length > 0
                message: dashboardModel.errorText
                onRetry: dashboardModel.fetchStatus(SystemMetricsProvider, DebugLogger)
            }

            RowLayout {
                objectName: "dashboardRefreshing"
                Layout.topMargin: 60
                Layout.alignment: Qt.AlignHCenter
                visible: !dashboard.hasStatus && dashboardModel.isLoading && dashboardModel.errorText.length === 0
                spacing: 10
                ProgressRingView { diameter: 22; lineWidth: 3 }
                Text {
                    text: qsTr("Refreshing…")
                    color: Theme.secondaryText
                    font.pixelSize: Theme.bodySize
                }
            }

            GridLayout {
                id: cards
                objectName: "dashboardCards"
                Layout.fillWidth: true
                visible: dashboard.hasStatus
                columns: 2
                rowSpacing: 10
                columnSpacing: 12
                readonly property real cardHeight: 104

                HealthCard {
                    objectName: "healthCard"
                    Layout.fillWidth: true
                    Layout.preferredWidth: 1
                    Layout.preferredHeight: cards.cardHeight
                    entered: dashboard.entered
                    entryDelay: 50
                    viewModel: dashboardModel
                    score: dashboard.hasStatus ? dashboard.status.healthScore : 0
                    hostName: dashboardModel.hostName
                }
                MetricCard {
                    objectName: "diskCard"
                    Layout.fillWidth: true
                    Layout.preferredWidth: 1
                    Layout.preferredHeight: cards.cardHeight
                    entered: dashboard.entered
                    entryDelay: 120
                    symbol: "internaldrive.fill"
                    gradientColours: [Theme.brandLight, Theme.brandBlue]
                    fill: "transparent"
                    title: "Macintosh HD"
                    value: dashboard.hasStatus ? dashboardModel.formatBytes(dashboard.status.diskFree) + " " + qsTr("free") : ""
                    detailBelow: true
                    detail: dashboard.hasStatus ? dashboardModel.formatBytes(dashboard.status.diskUsed) + " " + qsTr("of") + " "
                                                  + dashboardModel.formatBytes(dashboard.status.diskTotal) : ""
                    fraction: dashboard.hasStatus ? dashboardModel.barFraction(dashboard.status.diskUsagePercent) : 0
                }
                MetricCard {
                    objectName: "cpuCard"
                    Layout.fillWidth: true
                    Layout.preferredWidth: 1
                    Layout.preferredHeight: cards.cardHeight
                    entered: dashboard.entered
                    entryDelay: 190
                    symbol: "cpu"
                    title: qsTr("CPU Usage")
                    value: dashboard.hasStatus ? Math.trunc(dashboard.status.cpuUsage) + "%" : ""
                    detail: dashboard.hasStatus ? dashboard.status.cores + " " + qsTr("cores") : ""
                    fraction: dashboard.hasStatus ? dashboardModel.barFraction(dashboard.status.cpuUsage) : 0

                    // The temperature only where a sensor gave one: no placeholder.
                    SymbolIcon {
                        objectName: "temperatureRow"
                        visible: dashboard.hasStatus && dashboard.status.hasTemperature
                        symbol: "thermometer.medium"
                        color: Theme.orange
                        size: 14
                    }
                    Text {
                        visible: dashboard.hasStatus && dashboard.status.hasTemperature
                        text: dashboard.hasStatus ? Math.trunc(dashboard.status.temperature) + "°C" : ""
                        color: Theme.orange
                        font.pixelSize: Theme.bodySize
                        font.weight: Font.DemiBold
                    }
                }
                MetricCard {
                    objectName: "memoryCard"
                    Layout.fillWidth: true
                    Layout.preferredWidth: 1
                    Layout.preferredHeight: cards.cardHeight
                    entered: dashboard.entered
                    entryDelay: 260
                    symbol: "memorychip"
                    title: qsTr("Memory Usage")
                    value: dashboard.hasStatus ? dashboardModel.formatMemory(dashboard.status.memoryUsed) : ""
                    detailBelow: true
                    detail: dashboard.hasStatus ? dashboardModel.formatMemory(dashboard.status.memoryFree) + " " + qsTr("free") : ""
                    fraction: dashboard.hasStatus ? dashboardModel.barFraction(dashboard.status.memoryUsagePercent) : 0
                    barColor: Theme.purple
                    symbolColor: Theme.purple
                }
                MetricCard {
                    id: battery
                    objectName: "batteryCard"
                    readonly property int percentage: dashboard.hasStatus ? dashboard.status.batteryPercentage : -1
                    readonly property bool charging: dashboard.hasStatus && dashboard.status.isCharging
                    readonly property int minutes: dashboard.hasStatus ? dashboard.status.minutesRemaining : -1
                    readonly property color tint: dashboard.batteryColor(percentage, charging)
                    Layout.fillWidth: true
                    Layout.preferredWidth: 1
                    Layout.preferredHeight: cards.cardHeight
                    entered: dashboard.entered
                    entryDelay: 330
                    symbol: charging ? "battery.100.bolt" : "battery.75"
                    symbolColor: tint
                    title: qsTr("Battery")
                    value: percentage < 0 ? "---" : percentage + "%"
                    detail: minutes >= 1 ? dashboardModel.formatTimeRemaining(minutes, charging) : ""
                    fraction: dashboardModel.barFraction(percentage)
                    barColor: tint

                    Text {
                        visible: battery.charging
                        text: qsTr("Charging")
                        color: Theme.green
                        font.pixelSize: Theme.bodySize
                        font.weight: Font.DemiBold
                    }
                }
                DashboardCard {
                    objectName: "networkCard"
                    Layout.fillWidth: true
                    Layout.preferredWidth: 1
                    Layout.preferredHeight: cards.cardHeight
                    entered: dashboard.entered
                    entryDelay: 400

                    ColumnLayout {
                        anchors.fill: parent
                        anchors.margins: 14
                        spacing: 8
                        RowLayout {
                            spacing: 6
                            SymbolIcon { symbol: "network"; color: Theme.blue; size: 16 }
                            Text {
                                text: qsTr("Network")
                                color: Theme.secondaryText
                                font.pixelSize: Theme.bodySize
                                font.weight: Font.DemiBold
                            }
                        }
                        Repeater {
                            model: [
                                { symbol: "arrow.up", rate: dashboard.hasStatus ? dashboard.status.sendRate : 0 },
                                { symbol: "arrow.down", rate: dashboard.hasStatus ? dashboard.status.receiveRate : 0 }
                            ]
                            RowLayout {
                                required property var modelData
                                spacing: 8
                                SymbolIcon { symbol: modelData.symbol; color: Theme.blue; size: 14 }
                                Text {
                                    text: dashboard.formatRate(modelData.rate)
                                    color: Theme.primaryText
                                    font.pixelSize: 17
                                    font.weight: Font.DemiBold
                                }
                            }
                        }
                        Item { Layout.fillHeight: true }
                    }
                }
            }

            DashboardCard {
                objectName: "lifetimeCard"
                Layout.fillWidth: true
                Layout.preferredHeight: 66
                visible: dashboard.hasStatus && dashboardModel.showsLifetimeStats
                entered: dashboard.entered
                entryDelay: 540

                RowLayout {
                    anchors.fill: parent
                    anchors.margins: 14
                    spacing: 12
                    Repeater {
                        model: [
                            { figure: String(dashboardModel.lifetimeStats.totalCleanups || 0), label: qsTr("Lifetime Cleanups") },
                            { figure: dashboard.formatSize(dashboardModel.lifetimeStats.totalSpaceFreedBytes || 0),
                              label: qsTr("Total Space Freed") }
                        ]
                        ColumnLayout {
                            required property var modelData
                            Layout.fillWidth: true
                            Layout.preferredWidth: 1
                            spacing: 2
                            Text {
                                Layout.alignment: Qt.AlignHCenter
                                text: modelData.figure
                                color: Theme.primaryText
                                font.pixelSize: 22
                                font.weight: Font.Bold
                            }
                            Text {
                                Layout.alignment: Qt.AlignHCenter
                                text: modelData.label
                                color: Theme.secondaryText
                                font.pixelSize: Theme.captionSize + 1
                            }
                        }
                    }
                }
            }

            DashboardCard {
                Layout.preferredWidth: quickClean.implicitWidth
                Layout.preferredHeight: quickClean.implicitHeight
                visible: dashboard.hasStatus
                fill: "transparent"
                entered: dashboard.entered
                entryDelay: 610
                ActionButton {
                    id: quickClean
                    objectName: "quickCleanButton"
                    title: qsTr("Quick Clean")
                    style: "primary"
                    symbol: "sparkles"
                    onAction: dashboardModel.quickClean(AppState)
                }
            }
        }
    }

    // Repeater delegates reach the view model through these, not through its id.
    function formatRate(bytes) { return dashboardModel.formatNetworkRate(bytes) }
    function formatSize(bytes) { return dashboardModel.formatBytes(bytes) }
}
