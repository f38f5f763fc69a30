#pragma once

#include <string>
#include <vector>

#include "duplicates/DuplicateGroup.h"

namespace halcyra::duplicates {

/// What a delete run may remove, decided from a fresh look at each file just before it starts.
///
/// The selection was made on what the scan saw, which may be minutes old. A marked copy that
/// has changed since is no longer known to be a duplicate, and a group whose every kept copy
/// has changed or gone no longer has a copy to fall back on: neither is deleted.
struct DeletionPlan {
  /// A marked copy left in place, with why.
  struct Skipped {
    std::string path;
    std::string reason;
  };

  std::vector<std::string> paths; ///< marked copies to delete, group by group, in list order
  std::vector<Skipped> skipped;
};

/// Looks at every file of `groups` on disk, without following links.
DeletionPlan planDeletion(const std::vector<DuplicateGroup>& groups);

} // namespace halcyra::duplicates
