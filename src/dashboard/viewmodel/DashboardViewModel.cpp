#include "dashboard/viewmodel/DashboardViewModel.h"

#include <algorithm>
#include <cmath>
#include <exception>

#include <QSysInfo>

#include "app/BackgroundTask.h"
#include "core/ByteFormatter.h"
#include "core/CleanError.h"
#include "dashboard/DashboardFormat.h"

namespace halcyra::dashboard {
namespace {

using Level = core::LogEntry::LogLevel;
using Source = core::LogEntry::LogSource;

QString whole(double value) { return QString::number(static_cast<long long>(std::trunc(value))); }

// An sRGB colour as QML reads it, without bringing QtGui into a view model.
QString rgb(double red, double green, double blue) {
  const auto channel = [](double value) { return QStringLiteral("%1").arg(std::lround(value * 255), 2, 16, QLatin1Char('0')); };
  return QLatin1Char('#') + channel(red) + channel(green) + channel(blue);
}

} // namespace

DashboardViewModel::DashboardViewModel(QObject* parent)
    : QObject(parent), hostName_(QSysInfo::machineHostName()) {
  pollTimer_.setInterval(kPollInterval);
  connect(&pollTimer_, &QTimer::timeout, this, [this] {
    if (pollProvider_) read(pollProvider_, pollLogger_);
  });
}

DashboardViewModel::~DashboardViewModel() = default;

void DashboardViewModel::fetchStatus(std::shared_ptr<SystemMetricsProvider> provider, app::DebugLogger& logger) {
  if (!provider) return;
  setLoading(true);
  if (!errorText_.isEmpty()) {
    errorText_.clear();
    emit errorChanged();
  }
  QPointer<app::DebugLogger> log(&logger);
  QTimer::singleShot(0, this, [this, provider = std::move(provider), log] { read(provider, log); });
}

void DashboardViewModel::read(const std::shared_ptr<SystemMetricsProvider>& provider, app::DebugLogger* logger) {
  setLoading(true);
  try {
    status_ = provider->readStatus();
  } catch (const std::exception& error) {
    // The readers give neutral values rather than fail; this is for whatever else may.
    errorText_ = QString::fromStdString(core::describeError(error));
    emit errorChanged();
    setLoading(false);
    return;
  }
  emit statusChanged();
  if (logger != nullptr) {
    const auto& s = *status_;
    const QString temperature = s.thermal.cpuTemperature ? whole(*s.thermal.cpuTemperature) + QStringLiteral("°C")
                                                          : QStringLiteral("N/A");
    logger->log(QStringLiteral("Status: CPU %1%, Memory %2%, Disk %3%, Temp %4, Health %5")
                    .arg(whole(s.cpu.usage), whole(s.memory.usagePercent), whole(s.disk.usagePercent), temperature)
                    .arg(s.healthScore),
                Level::info, Source::dashboard);
  }
  setLoading(false);
}

void DashboardViewModel::startPolling(std::shared_ptr<SystemMetricsProvider> provider, app::DebugLogger& logger) {
  if (!provider) return;
  const bool wasPolling = isPolling();
  pollTimer_.stop();
  logger.log(QStringLiteral("Dashboard polling started (interval: 5s)"), Level::info, Source::dashboard);
  pollProvider_ = provider;
  pollLogger_ = &logger;
  fetchStatus(std::move(provider), logger);
  pollTimer_.start();
  if (!wasPolling) emit isPollingChanged();
}

void DashboardViewModel::stopPolling() {
  if (!pollTimer_.isActive()) return;
  pollTimer_.stop();
  pollProvider_.reset();
  emit isPollingChanged();
}

void DashboardViewModel::fetchLifetimeStats(std::shared_ptr<statistics::StatisticsReporter> statistics) {
  if (!statistics || !statistics->isEnabled()) return;
  using Answer = std::optional<statistics::LifetimeStatsResponse>;
  app::runInBackground<Answer>(
      this, [statistics] { return statistics->fetchLifetimeStats(); },
      [this](Answer answer) {
        lifetimeStats_ = std::move(answer);
        emit lifetimeStatsChanged();
      },
      [this](std::exception_ptr) {
        // A lost or confused service only hides the card; nothing is logged or shown.
        if (!lifetimeStats_) return;
        lifetimeStats_.reset();
        emit lifetimeStatsChanged();
      });
}

void DashboardViewModel::fetchStatus(app::ServiceHandle* provider, app::DebugLogger* logger) {
  if (provider == nullptr || logger == nullptr) return;
  fetchStatus(provider->get<SystemMetricsProvider>(), *logger);
}

void DashboardViewModel::startPolling(app::ServiceHandle* provider, app::DebugLogger* logger) {
  if (provider == nullptr || logger == nullptr) return;
  startPolling(provider->get<SystemMetricsProvider>(), *logger);
}

void DashboardViewModel::fetchLifetimeStats(app::ServiceHandle* statistics) {
  if (statistics == nullptr) return;
  fetchLifetimeStats(statistics->get<statistics::StatisticsReporter>());
}

void DashboardViewModel::quickClean(app::AppState* appState) {
  if (appState == nullptr) return;
  appState->setShouldAutoScan(true);
  appState->setSelectedNavItem(app::NavigationItem::clean);
}

void DashboardViewModel::setLoading(bool loading) {
  if (loading == isLoading_) return;
  isLoading_ = loading;
  emit isLoadingChanged();
}

QStringList DashboardViewModel::healthGradient(int score) {
  if (score <= 40) return {rgb(1.0, 0.45, 0.4), rgb(0.9, 0.3, 0.5)};
  if (score <= 70) return {rgb(1.0, 0.8, 0.3), rgb(1.0, 0.6, 0.3)};
  return {rgb(0.3, 0.8, 0.6), rgb(0.2, 0.7, 0.8)};
}

QString DashboardViewModel::healthWord(int score) { return QString::fromStdString(dashboard::healthWord(score)); }

QString DashboardViewModel::batteryColorName(int percentage, bool charging) {
  if (charging || percentage >= 51) return QStringLiteral("green");
  if (percentage >= 21) return QStringLiteral("orange");
  return QStringLiteral("red");
}

QString DashboardViewModel::formatTimeRemaining(int minutes, bool charging) {
  return QString::fromStdString(dashboard::formatTimeRemaining(minutes, charging));
}

QString DashboardViewModel::formatNetworkRate(double bytesPerSecond) {
  return QString::fromStdString(dashboard::formatNetworkRate(static_cast<std::uint64_t>(std::max(0.0, bytesPerSecond))));
}

QString DashboardViewModel::formatBytes(double bytes) {
  return QString::fromStdString(core::ByteFormatter::format(static_cast<std::int64_t>(bytes)));
}

QString DashboardViewModel::formatMemory(double bytes) {
  return QString::fromStdString(core::ByteFormatter::formatMemory(static_cast<std::uint64_t>(std::max(0.0, bytes))));
}

double DashboardViewModel::barFraction(double percent) { return std::clamp(percent / 100.0, 0.0, 1.0); }

QVariantMap DashboardViewModel::statusMap() const {
  if (!status_) return {};
  const auto& s = *status_;
  // Byte counts go to QML as doubles: exact up to 2^53 bytes, far beyond any disk.
  return {
      {QStringLiteral("healthScore"), s.healthScore},
      {QStringLiteral("cpuUsage"), s.cpu.usage},
      {QStringLiteral("cores"), s.cpu.cores},
      {QStringLiteral("model"), QString::fromStdString(s.cpu.model)},
      {QStringLiteral("memoryUsed"), static_cast<double>(s.memory.used)},
      {QStringLiteral("memoryFree"), static_cast<double>(s.memory.free)},
      {QStringLiteral("memoryUsagePercent"), s.memory.usagePercent},
      {QStringLiteral("diskTotal"), static_cast<double>(s.disk.total)},
      {QStringLiteral("diskUsed"), static_cast<double>(s.disk.used)},
      {QStringLiteral("diskFree"), static_cast<double>(s.disk.free)},
      {QStringLiteral("diskUsagePercent"), s.disk.usagePercent},
      {QStringLiteral("hasTemperature"), s.thermal.cpuTemperature.has_value()},
      {QStringLiteral("temperature"), s.thermal.cpuTemperature.value_or(0)},
      {QStringLiteral("sendRate"), static_cast<double>(s.network.sendRate)},
      {QStringLiteral("receiveRate"), static_cast<double>(s.network.receiveRate)},
      {QStringLiteral("batteryPercentage"), s.battery.percentage},
      {QStringLiteral("isCharging"), s.battery.isCharging},
      {QStringLiteral("minutesRemaining"), s.battery.minutesRemaining},
  };
}

QVariantMap DashboardViewModel::lifetimeStatsMap() const {
  if (!lifetimeStats_) return {};
  return {
      {QStringLiteral("totalCleanups"), static_cast<double>(lifetimeStats_->totalCleanups)},
      {QStringLiteral("totalSpaceFreedBytes"), static_cast<double>(lifetimeStats_->totalSpaceFreedBytes)},
      {QStringLiteral("totalFilesCleaned"), static_cast<double>(lifetimeStats_->totalFilesCleaned)},
  };
}

} // namespace halcyra::dashboard
