#pragma once

#include <functional>
#include <optional>
#include <string>

#include "statistics/AnalyticsClient.h"
#include "statistics/StatisticsConfig.h"

namespace halcyra::statistics {

/// Reports finished cleans and reads the lifetime figures for the window, with the build's
/// configuration. Without a key (or without a machine identifier, for reports) it does
/// nothing at all, silently. The pictures of the screens put scripted figures in its place.
class StatisticsReporter {
public:
  using MachineId = std::function<std::optional<std::string>()>;

  /// `machineId` defaults to MachineIdentifier::hardwareUUID, `appVersion` to "v" and the
  /// program's version.
  explicit StatisticsReporter(std::optional<StatisticsConfig> config, MachineId machineId = {},
                              std::string appVersion = {},
                              std::chrono::milliseconds timeout = std::chrono::seconds(60));

  virtual ~StatisticsReporter() = default;

  virtual bool isEnabled() const noexcept { return config_.has_value(); }

  /// Sends one clean's figures on a detached thread of its own and returns at once; the
  /// caller never waits for the service, nor does quitting. False when nothing was sent: no
  /// key, or no machine identifier.
  virtual bool reportClean(int itemsCleaned, std::int64_t freedBytes) const;

  /// The lifetime figures of this build's key, on the calling thread. None without a key;
  /// throws what AnalyticsClient::fetchLifetimeStats throws.
  virtual std::optional<LifetimeStatsResponse> fetchLifetimeStats() const;

private:
  std::optional<StatisticsConfig> config_;
  MachineId machineId_;
  std::string appVersion_;
  std::chrono::milliseconds timeout_;
};

} // namespace halcyra::statistics
