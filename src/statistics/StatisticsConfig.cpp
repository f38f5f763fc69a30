#include "statistics/StatisticsConfig.h"

namespace halcyra::statistics {

std::optional<StatisticsConfig> StatisticsConfig::fromBuild() {
  StatisticsConfig config{HALCYRA_STATISTICS_URL, HALCYRA_STATISTICS_KEY};
  if (config.baseUrl.empty() || config.key.empty()) return std::nullopt;
  return config;
}

} // namespace halcyra::statistics
