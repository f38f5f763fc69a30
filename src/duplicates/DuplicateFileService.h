#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "duplicates/DuplicateCleanResult.h"
#include "duplicates/DuplicateGroup.h"
#include "duplicates/FoundDuplicates.h"
#include "platform/Platform.h"

namespace halcyra::duplicates {

/// Receives status texts, always on the thread that called the service.
using StatusCallback = std::function<void(const std::string& status)>;

/// The duplicate finder's engine: proves files identical by size and whole-content SHA-256,
/// and deletes the copies the user chose. Holds no state between calls.
class DuplicateFileService {
public:
  explicit DuplicateFileService(platform::Platform platform);

  /// Groups of identical files of at least `minFileSize` bytes below `directory`, the group
  /// that frees most first. Each group lists its files oldest first, with every copy but the
  /// oldest selected. A folder that cannot be read gives no groups and no error.
  std::vector<DuplicateGroup> scan(const std::string& directory, std::int64_t minFileSize,
                                   const StatusCallback& onProgress) const;
  /// The same scan, its groups held compactly: records are made only when asked for.
  FoundDuplicates find(const std::string& directory, std::int64_t minFileSize, const StatusCallback& onProgress) const;

  /// Deletes the selected copies of `groups` one by one, then makes one privileged attempt for
  /// those refused for lack of rights. Right before each deletion the copy is checked to be
  /// unchanged since the scan, and its group to still hold an unchanged copy that is kept and
  /// is not the same entry seen twice; otherwise it stays. Runs that delete exclude one
  /// another. Never fails as a whole: a copy that stays is listed with its reason.
  DuplicateCleanResult deleteFiles(const std::vector<DuplicateGroup>& groups, const StatusCallback& onProgress) const;

  /// The number of threads that read and digest files during a scan.
  static unsigned hashingWorkers();

private:
  platform::Platform platform_;
};

} // namespace halcyra::duplicates
