#pragma once

#include <string>
#include <vector>

#include "clean/CleanItem.h"
#include "clean/FileQueries.h"
#include "platform/SystemPaths.h"
#include "platform/TreeSize.h"

namespace halcyra::clean {

/// What the passes and scanners of one scan share: where the system lives, the moment the
/// scan started (every age limit counts back from it), and the sizer that measures each folder
/// once per scan.
class ScanContext {
public:
  ScanContext(platform::SystemPaths paths, platform::TreeSizer& sizer, TimePoint now)
      : paths_(std::move(paths)), sizer_(sizer), now_(now) {}

  const platform::SystemPaths& paths() const { return paths_; }
  TimePoint now() const { return now_; }

  /// The size of a file or folder: regular files only, hidden entries and links left out.
  std::int64_t itemSize(const std::string& path) { return sizer_.size(path); }

  /// An item for each path whose size is 1 or more, in the order of `paths`, each with a fresh
  /// id. The paths are measured together.
  std::vector<CleanItem> measuredItems(const std::vector<std::string>& paths, bool selected);

private:
  platform::SystemPaths paths_;
  platform::TreeSizer& sizer_;
  TimePoint now_;
};

/// Sorts items by size, largest first, keeping the order of equal sizes.
void sortBySize(std::vector<CleanItem>& items);

} // namespace halcyra::clean
