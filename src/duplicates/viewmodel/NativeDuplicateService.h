#pragma once

#include "duplicates/DuplicateFileService.h"
#include "duplicates/viewmodel/DuplicateServiceProtocol.h"

namespace halcyra::duplicates {

/// The real engine behind the window's interface to it.
class NativeDuplicateService final : public DuplicateServiceProtocol {
public:
  explicit NativeDuplicateService(platform::Platform platform);

  std::vector<DuplicateGroup> scan(const std::string& directory, std::int64_t minFileSize,
                                   const StatusCallback& onProgress) override;
  DuplicateCleanResult deleteFiles(const std::vector<DuplicateGroup>& groups, const StatusCallback& onProgress) override;

private:
  DuplicateFileService service_;
};

} // namespace halcyra::duplicates
