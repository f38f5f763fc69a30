#pragma once

#include <functional>
#include <string>
#include <vector>

#include "clean/CleanItem.h"

namespace halcyra::clean {

/// Receives status texts; may be called from any thread.
using StatusCallback = std::function<void(const std::string& status)>;

/// The junk cleaner's engine: find removable files, remove a selection of them.
class CleanServiceProtocol {
public:
  virtual ~CleanServiceProtocol() = default;
  /// Walks the catalogue and the scanners; categories in the order they were found.
  virtual std::vector<CleanCategory> scan(const StatusCallback& onProgress) = 0;
  /// Removes the given items in order; one failure never ends the run.
  virtual CleanResult clean(const std::vector<CleanItem>& items, const StatusCallback& onProgress) = 0;
};

} // namespace halcyra::clean
