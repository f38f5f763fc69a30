#include "duplicates/SelectionStrategy.h"

#include <algorithm>
#include <numeric>

namespace halcyra::duplicates {

void applyStrategy(DuplicateGroup& group, SelectionStrategy strategy) {
  auto& files = group.files;
  std::vector<std::size_t> order(files.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
    return files[a].modificationDate < files[b].modificationDate;
  });
  const std::size_t n = order.size();
  for (std::size_t position = 0; position < n; ++position) {
    files[order[position]].isSelected =
        strategy == SelectionStrategy::keepOldest ? position != 0 : position + 1 < n;
  }
}

void applyStrategy(std::vector<DuplicateGroup>& groups, SelectionStrategy strategy) {
  for (auto& group : groups) applyStrategy(group, strategy);
}

} // namespace halcyra::duplicates
