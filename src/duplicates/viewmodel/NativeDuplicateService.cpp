#include "duplicates/viewmodel/NativeDuplicateService.h"

namespace halcyra::duplicates {

NativeDuplicateService::NativeDuplicateService(platform::Platform platform) : service_(std::move(platform)) {}

std::vector<DuplicateGroup> NativeDuplicateService::scan(const std::string& directory, std::int64_t minFileSize,
                                                         const StatusCallback& onProgress) {
  return service_.scan(directory, minFileSize, onProgress);
}

DuplicateCleanResult NativeDuplicateService::deleteFiles(const std::vector<DuplicateGroup>& groups,
                                                         const StatusCallback& onProgress) {
  return service_.deleteFiles(groups, onProgress);
}

} // namespace halcyra::duplicates
