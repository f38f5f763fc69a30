#include "clean/NativeCleanService.h"

namespace halcyra::clean {

NativeCleanService::NativeCleanService(platform::Platform platform) : platform_(std::move(platform)) {}

std::vector<CleanCategory> NativeCleanService::scan(const StatusCallback& onProgress) {
  if (onProgress) onProgress("Scan complete");
  return {};
}

} // namespace halcyra::clean
