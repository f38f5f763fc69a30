#pragma once

#include <cstdint>
#include <string>

namespace halcyra::statistics {

/// What one finished clean reports to the statistics service.
struct CleanupEventRequest {
  std::string apiKey;    ///< the opaque key the build was made with
  std::string machineId; ///< MachineIdentifier::hardwareUUID
  int filesCleanedCount = 0;
  std::int64_t spaceFreedBytes = 0;
  std::string appVersion; ///< "v" and the program's version
};

/// The request as the service reads it: a JSON object with the keys apiKey, machineId,
/// filesCleanedCount, spaceFreedBytes and appVersion, in that order.
std::string encodeCleanupEvent(const CleanupEventRequest& request);

} // namespace halcyra::statistics
