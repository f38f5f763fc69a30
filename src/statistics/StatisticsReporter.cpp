#include "statistics/StatisticsReporter.h"

#include <thread>

#include "core/Version.h"
#include "platform/MachineIdentifier.h"

namespace halcyra::statistics {

StatisticsReporter::StatisticsReporter(std::optional<StatisticsConfig> config, MachineId machineId,
                                       std::string appVersion, std::chrono::milliseconds timeout)
    : config_(std::move(config)), machineId_(std::move(machineId)), appVersion_(std::move(appVersion)),
      timeout_(timeout) {
  if (!machineId_) machineId_ = [] { return platform::MachineIdentifier::hardwareUUID(); };
  if (appVersion_.empty()) appVersion_ = std::string("v") + core::kVersion;
}

bool StatisticsReporter::reportClean(int itemsCleaned, std::int64_t freedBytes) const {
  if (!config_) return false;
  const auto machine = machineId_();
  if (!machine) return false;
  CleanupEventRequest request{config_->key, *machine, itemsCleaned, freedBytes, appVersion_};
  AnalyticsClient client(config_->baseUrl, timeout_);
  // Detached: the thread owns copies of everything it uses, and a service that never answers
  // holds up neither the summary nor the end of the program.
  std::thread([client = std::move(client), request = std::move(request)] { client.sendCleanupEvent(request); })
      .detach();
  return true;
}

std::optional<LifetimeStatsResponse> StatisticsReporter::fetchLifetimeStats() const {
  if (!config_) return std::nullopt;
  return AnalyticsClient(config_->baseUrl, timeout_).fetchLifetimeStats(config_->key);
}

} // namespace halcyra::statistics
