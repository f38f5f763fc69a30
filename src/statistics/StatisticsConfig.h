#pragma once

#include <optional>
#include <string>

namespace halcyra::statistics {

/// Where the statistics service is and the opaque key that identifies this build's user to it.
/// Both are build configuration (the CMake cache variables HALCYRA_STATISTICS_URL and
/// HALCYRA_STATISTICS_KEY); the program has no setting, file or variable of its own for them.
struct StatisticsConfig {
  std::string baseUrl; ///< ends in "/api"
  std::string key;

  /// What the build was made with; none when it was made without a key or an address, and
  /// then nothing ever leaves the machine.
  static std::optional<StatisticsConfig> fromBuild();
};

} // namespace halcyra::statistics
