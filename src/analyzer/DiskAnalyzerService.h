#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "analyzer/DiskAnalyzerScanResult.h"
#include "analyzer/FolderSink.h"
#include "analyzer/LargestFileEntry.h"

namespace halcyra::analyzer {

/// What a scan found besides its folders.
struct DiskAnalyzerScanSummary {
  std::int64_t totalSize = 0;      ///< size of the scanned folder
  std::int64_t fileCount = 0;      ///< all regular files seen, those below the depth limit too
  std::int64_t directoryCount = 0; ///< folders entered, the root included, none below the depth limit
  double duration = 0;             ///< wall time of the scan, seconds
  std::vector<LargestFileEntry> largestFiles; ///< at most kLargestFileCount, largest first
};

/// Walks a folder into a tree of its sub-folders with their sizes on disk and keeps the
/// largest files met on the way. Holds no state between scans.
///
/// Sizes are allocated space (the blocks of a file), hidden entries count, symbolic links are
/// never followed (a link to a folder adds nothing), and folders on another file system than
/// the scanned one are not entered. Down to depth kMaxDepth every folder entered is a node;
/// below it sizes and files are summed without nodes. The walk keeps its own stack, so any
/// depth is measured with a bounded number of open descriptors.
///
/// Work may be split over several threads; the result (tree, order of children, counts, list
/// of largest files) and the sequence of status texts are exactly those of one depth-first
/// walk in listing order.
class DiskAnalyzerService {
public:
  /// Depth at which the tree stops; the root is depth 0.
  static constexpr int kMaxDepth = 12;
  /// A status text for every so many folders entered.
  static constexpr std::int64_t kStatusInterval = 300;

  struct Options {
    /// Threads that walk at the same time, the calling one included; 0 picks one per
    /// processor core, at most 4.
    unsigned workers = 0;
    /// Hands every sub-folder to the shared queue instead of only when a thread is idle.
    /// Slower; it exists to exercise the reassembly of split work.
    bool splitEveryFolder = false;
    /// Bytes of log (about 16 per folder) a thread may hold ahead of the sequential order
    /// before it waits for that order to catch up; bounds memory on trees whose parts take
    /// very different times.
    std::size_t aheadLogLimit = 256 * 1024;
  };

  DiskAnalyzerService() = default;
  explicit DiskAnalyzerService(Options options) : options_(options) {}

  /// Scans the folder at `path` (a symbolic link given here is followed; none below it is).
  /// Never fails: a folder that cannot be listed gives a zero-size root marked
  /// isPermissionDenied. `onProgress` gets the status texts, one at a time and in order, from
  /// whichever thread is walking; it must return at once.
  DiskAnalyzerScanResult scanDirectory(const std::string& path,
                                       const std::function<void(const std::string&)>& onProgress) const;

  /// The same scan with its folders handed to `sink` as the walk settles them instead of
  /// kept as a tree: memory then stays small however many folders there are. The status
  /// texts and the calls to `sink` come interleaved in the order of the sequential walk, the
  /// last text after the last folder.
  DiskAnalyzerScanSummary scan(const std::string& path, FolderSink& sink,
                               const std::function<void(const std::string&)>& onProgress) const;

private:
  Options options_;
};

} // namespace halcyra::analyzer
