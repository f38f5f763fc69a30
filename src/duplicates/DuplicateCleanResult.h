#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace halcyra::duplicates {

/// A marked copy that a delete run left in place, and why.
struct DuplicateFailure {
  std::string path;
  std::string error;
};

/// What a delete run removed.
struct DuplicateCleanResult {
  std::int64_t freedBytes = 0; ///< sizes of the files removed without administrator rights
  int filesDeleted = 0;        ///< every marked copy that this run removed, however it went
  double duration = 0;         ///< seconds from the start of the run to its end, prompt included
  /// Marked copies still in place (changed since the scan, no intact copy kept, refused),
  /// with the reason. A copy that was already gone is none.
  std::vector<DuplicateFailure> failedFiles = {};
};

} // namespace halcyra::duplicates
