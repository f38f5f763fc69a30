#pragma once

#include <memory>
#include <optional>

#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <QVariantList>
#include <QVariantMap>

#include "app/AppState.h"
#include "app/DebugLogger.h"
#include "app/ServiceHandle.h"
#include "dashboard/SystemMetricsProvider.h"
#include "dashboard/SystemStatus.h"
#include "statistics/LifetimeStatsResponse.h"
#include "statistics/StatisticsReporter.h"

namespace halcyra::dashboard {

/// The dashboard's state: the newest snapshot of the machine, read every five seconds while
/// the dashboard is on screen, and the lifetime figures of the statistics service.
///
/// The screen makes its own, anew each time it appears, and hands it the shared provider (one
/// for the life of the program, so usage and rates are deltas across appearances). Readings
/// run on the interface thread: each reader is one direct look at the system. At most one
/// poll runs, and it ends with `stopPolling` or with this object.
class DashboardViewModel : public QObject {
  Q_OBJECT
  Q_PROPERTY(bool hasStatus READ hasStatus NOTIFY statusChanged)
  Q_PROPERTY(QVariantMap status READ statusMap NOTIFY statusChanged)
  Q_PROPERTY(bool isLoading READ isLoading NOTIFY isLoadingChanged)
  Q_PROPERTY(QString errorText READ errorText NOTIFY errorChanged)
  Q_PROPERTY(bool isPolling READ isPolling NOTIFY isPollingChanged)
  Q_PROPERTY(QVariantMap lifetimeStats READ lifetimeStatsMap NOTIFY lifetimeStatsChanged)
  Q_PROPERTY(bool showsLifetimeStats READ showsLifetimeStats NOTIFY lifetimeStatsChanged)
  Q_PROPERTY(QString hostName READ hostName CONSTANT)

public:
  static constexpr int kPollInterval = 5000; ///< milliseconds

  explicit DashboardViewModel(QObject* parent = nullptr);
  ~DashboardViewModel() override;

  const std::optional<SystemStatus>& status() const noexcept { return status_; }
  bool hasStatus() const noexcept { return status_.has_value(); }
  bool isLoading() const noexcept { return isLoading_; }
  QString errorText() const { return errorText_; }
  bool isPolling() const noexcept { return pollTimer_.isActive(); }
  const std::optional<statistics::LifetimeStatsResponse>& lifetimeStats() const noexcept { return lifetimeStats_; }
  /// The lifetime card shows once at least one clean has been counted.
  bool showsLifetimeStats() const { return lifetimeStats_ && lifetimeStats_->totalCleanups >= 1; }
  QString hostName() const { return hostName_; }
  /// The snapshot and the lifetime figures as the screen reads them (empty when none).
  QVariantMap statusMap() const;
  QVariantMap lifetimeStatsMap() const;

  /// One reading: loading on, the error cleared; the reading comes as a call of its own on the
  /// interface thread (so "Refreshing…" can be drawn first), then the status, one log line,
  /// loading off.
  void fetchStatus(std::shared_ptr<SystemMetricsProvider> provider, app::DebugLogger& logger);
  /// Replaces any running poll with a new one whose first reading comes at once, then one
  /// every five seconds.
  void startPolling(std::shared_ptr<SystemMetricsProvider> provider, app::DebugLogger& logger);
  /// Asks the statistics service for the lifetime figures on a thread of their own; any
  /// failure leaves none, silently. Nothing happens in a build without a key.
  void fetchLifetimeStats(std::shared_ptr<statistics::StatisticsReporter> statistics);

  // The same as the screen calls them, with the objects it holds.
  Q_INVOKABLE void fetchStatus(halcyra::app::ServiceHandle* provider, halcyra::app::DebugLogger* logger);
  Q_INVOKABLE void startPolling(halcyra::app::ServiceHandle* provider, halcyra::app::DebugLogger* logger);
  Q_INVOKABLE void fetchLifetimeStats(halcyra::app::ServiceHandle* statistics);
  Q_INVOKABLE void stopPolling();
  /// The poll's interval; five seconds unless a test shortens it.
  void setPollInterval(int milliseconds) { pollTimer_.setInterval(milliseconds); }
  /// "Quick Clean": asks the cleaner for a scan, then goes there (in that order: the cleaner
  /// looks at the flag when it appears).
  Q_INVOKABLE void quickClean(halcyra::app::AppState* appState);

  // What the cards show.
  /// Start and end colour of the health card as "#rrggbb": red up to 40, amber up to 70,
  /// green above.
  Q_INVOKABLE static QStringList healthGradient(int score);
  Q_INVOKABLE static QString healthWord(int score);
  /// "green" while charging or from 51 %, "orange" from 21 %, else "red".
  Q_INVOKABLE static QString batteryColorName(int percentage, bool charging);
  Q_INVOKABLE static QString formatTimeRemaining(int minutes, bool charging);
  Q_INVOKABLE static QString formatNetworkRate(double bytesPerSecond);
  Q_INVOKABLE static QString formatBytes(double bytes);
  Q_INVOKABLE static QString formatMemory(double bytes);
  /// `value` ÷ 100 held to 0..1, for the bars.
  Q_INVOKABLE static double barFraction(double percent);

signals:
  void statusChanged();
  void isLoadingChanged();
  void errorChanged();
  void isPollingChanged();
  void lifetimeStatsChanged();

private:
  void read(const std::shared_ptr<SystemMetricsProvider>& provider, app::DebugLogger* logger);
  void setLoading(bool loading);

  std::optional<SystemStatus> status_;
  bool isLoading_ = false;
  QString errorText_;
  std::optional<statistics::LifetimeStatsResponse> lifetimeStats_;
  QString hostName_;
  QTimer pollTimer_;
  std::shared_ptr<SystemMetricsProvider> pollProvider_;
  QPointer<app::DebugLogger> pollLogger_;
};

} // namespace halcyra::dashboard
