#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "duplicates/DuplicateCleanResult.h"
#include "duplicates/DuplicateFileService.h"
#include "duplicates/DuplicateGroup.h"

namespace halcyra::duplicates {

/// The duplicate finder's engine as the window drives it: find groups of identical files,
/// delete chosen copies. The window runs each call on a worker thread; progress texts come on
/// that thread.
class DuplicateServiceProtocol {
public:
  virtual ~DuplicateServiceProtocol() = default;
  /// Groups of identical files of at least `minFileSize` bytes below `directory`.
  virtual std::vector<DuplicateGroup> scan(const std::string& directory, std::int64_t minFileSize,
                                           const StatusCallback& onProgress) = 0;
  /// Deletes the selected copies of the groups, each only while it and a kept copy of its
  /// group are as the scan saw them; one file that stays never ends the run.
  virtual DuplicateCleanResult deleteFiles(const std::vector<DuplicateGroup>& groups,
                                           const StatusCallback& onProgress) = 0;
};

} // namespace halcyra::duplicates
