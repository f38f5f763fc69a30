#pragma once

#include <cstdint>
#include <vector>

#include "analyzer/DirectoryNode.h"
#include "analyzer/LargestFileEntry.h"

namespace halcyra::analyzer {

/// What one scan of a folder found: the tree of its sub-folders and the largest files.
struct DiskAnalyzerScanResult {
  DirectoryNode root;
  std::int64_t totalSize = 0;      ///< equal to root.size
  std::int64_t fileCount = 0;      ///< all regular files seen, those below the depth limit too
  std::int64_t directoryCount = 0; ///< folders entered, the root included, none below the depth limit
  double duration = 0;             ///< wall time of the scan, seconds
  std::vector<LargestFileEntry> largestFiles; ///< at most kLargestFileCount, largest first
};

} // namespace halcyra::analyzer
