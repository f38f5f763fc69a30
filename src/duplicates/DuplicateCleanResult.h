#pragma once

#include <cstdint>

namespace halcyra::duplicates {

/// What a delete run removed.
struct DuplicateCleanResult {
  std::int64_t freedBytes = 0; ///< sizes of the files removed without administrator rights
  int filesDeleted = 0;        ///< every path that is gone at the end, however it went
  double duration = 0;         ///< seconds from the start of the run to its end, prompt included
};

} // namespace halcyra::duplicates
