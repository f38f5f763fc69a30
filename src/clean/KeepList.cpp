#include "clean/KeepList.h"

#include <algorithm>

#include "platform/RunningApplications.h"

namespace halcyra::clean {
namespace {

std::vector<std::string> lowerComponents(std::string_view path) {
  std::vector<std::string> components;
  std::size_t start = 0;
  while (start <= path.size()) {
    auto end = path.find('/', start);
    if (end == std::string_view::npos) end = path.size();
    if (end > start) components.push_back(platform::toLowerAscii(std::string(path.substr(start, end - start))));
    start = end + 1;
  }
  return components;
}

} // namespace

KeepList::KeepList(const std::vector<KeptPath>& entries, const platform::SystemPaths& paths,
                   const std::set<std::string>& runningApps) {
  for (const auto& entry : entries) {
    if (!entry.whileRunning.empty() && !platform::firstRunningProcess(entry.whileRunning, runningApps)) continue;
    const std::string resolved = entry.path.starts_with('/') ? paths.system(entry.path) : paths.inHome(entry.path);
    kept_.push_back(lowerComponents(resolved));
  }
}

bool KeepList::keeps(std::string_view path) const {
  const auto components = lowerComponents(path);
  return std::any_of(kept_.begin(), kept_.end(), [&](const std::vector<std::string>& kept) {
    // Equal over the shorter of the two: the same path, one below the other, or one holding it.
    const auto common = std::min(kept.size(), components.size());
    return std::equal(kept.begin(), kept.begin() + static_cast<std::ptrdiff_t>(common), components.begin());
  });
}

void KeepList::apply(std::vector<CleanCategory>& categories) const {
  std::erase_if(categories, [&](CleanCategory& category) {
    if (category.items.empty()) return false; // skipped with a reason: stays as it is
    std::erase_if(category.items, [&](const CleanItem& item) { return keeps(item.path); });
    return category.items.empty();
  });
}

} // namespace halcyra::clean
