#pragma once

#include <vector>

#include "duplicates/DuplicateGroup.h"

namespace halcyra::duplicates {

/// Which copy of each group stays when the selection is made by rule.
enum class SelectionStrategy { keepOldest, keepNewest };

/// Marks every copy but one for deletion: the oldest (first by modification date) or the
/// newest (last). Files with equal dates keep the group's order, so the copy that stays is
/// always the same one, and every group keeps exactly one copy.
void applyStrategy(DuplicateGroup& group, SelectionStrategy strategy);
void applyStrategy(std::vector<DuplicateGroup>& groups, SelectionStrategy strategy);

} // namespace halcyra::duplicates
