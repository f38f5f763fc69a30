#include "clean/ScanContext.h"

#include <algorithm>

#include "core/Uuid.h"

namespace halcyra::clean {

std::vector<CleanItem> ScanContext::measuredItems(const std::vector<std::string>& paths, bool selected) {
  std::vector<CleanItem> items;
  if (paths.empty()) return items;
  const auto sizes = sizer_.sizes(paths);
  for (std::size_t i = 0; i < paths.size(); ++i) {
    if (sizes[i] < 1) continue;
    items.push_back(CleanItem{core::makeUuid(), paths[i], sizes[i], selected});
  }
  return items;
}

void sortBySize(std::vector<CleanItem>& items) {
  std::stable_sort(items.begin(), items.end(), [](const CleanItem& a, const CleanItem& b) { return a.size > b.size; });
}

} // namespace halcyra::clean
