#include "duplicates/viewmodel/DeletionPlan.h"

#include <algorithm>

namespace halcyra::duplicates {

DeletionPlan planDeletion(const std::vector<DuplicateGroup>& groups) {
  DeletionPlan plan;
  for (const auto& group : groups) {
    const bool keptCopyIntact = std::any_of(group.files.begin(), group.files.end(), [](const DuplicateFile& file) {
      return !file.isSelected && isUnchangedSinceScan(file);
    });
    for (const auto& file : group.files) {
      if (!file.isSelected) continue;
      if (!keptCopyIntact) {
        plan.skipped.push_back({file.path, "the copy kept of it changed since the scan"});
      } else if (!isUnchangedSinceScan(file)) {
        plan.skipped.push_back({file.path, "changed since the scan"});
      } else {
        plan.paths.push_back(file.path);
      }
    }
  }
  return plan;
}

} // namespace halcyra::duplicates
