#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "clean/Sections.h"

namespace halcyra::clean {

/// Height in points of a section's card: the square root of its share of the largest section
/// (never below 0.05), times 120, plus 140. The largest section is 260 points high.
double cardHeight(std::int64_t size, std::int64_t largestSize);
/// The same against the largest `reclaimableSize` among `sections`.
double cardHeight(std::int64_t size, const std::vector<SectionGroup>& sections);

/// Where the cards of `sections` stand: indexes into `sections`, top to bottom in each column.
struct ColumnPlacement {
  std::vector<std::size_t> left;
  std::vector<std::size_t> right;
};

/// Largest section first (equal sizes keep their section order), each placed in the left column
/// while the left's card heights add up to no more than the right's, else in the right. Spacing
/// is not counted, so a tie goes left.
ColumnPlacement columns(const std::vector<SectionGroup>& sections);

/// The symbol of a file by its lower-cased extension ("folder.fill" for anything unknown).
std::string_view fileIcon(std::string_view path);

/// A section's categories that can be reviewed (neither protected nor skipped), by their total
/// item size, largest first, equal sizes in scan order.
std::vector<CleanCategory> reviewableCategories(const std::vector<CleanCategory>& sectionCategories);
/// A section's categories that were not scanned (protected ones stay hidden), in scan order.
std::vector<CleanCategory> skippedCategories(const std::vector<CleanCategory>& sectionCategories);

/// The sum of all item sizes of one category, selected or not.
std::int64_t totalSize(const CleanCategory& category);

} // namespace halcyra::clean
