#include "clean/NativeCleanService.h"

namespace halcyra::clean {

CleanResult NativeCleanService::clean(const std::vector<CleanItem>&, const StatusCallback& onProgress) {
  if (onProgress) onProgress("Cleanup complete");
  return {};
}

} // namespace halcyra::clean
