#pragma once

#include <cstdint>

namespace halcyra::shredder {

/// The outcome of one shred run.
struct ShredResult {
  int filesShredded = 0;       ///< files gone from disk at the end, by either path
  std::int64_t totalBytes = 0; ///< sum of the listed sizes of those files (not re-read)
  double duration = 0.0;       ///< seconds from the start of the run to the end of the free-space fill
  int passes = 0;              ///< overwrite passes of the run

  bool operator==(const ShredResult&) const = default;
};

} // namespace halcyra::shredder
