#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "clean/CleanItem.h"
#include "clean/ScanCatalogue.h"
#include "platform/SystemPaths.h"

namespace halcyra::clean {

/// The kept paths of one scan (keptPaths()), resolved against its home and root, the
/// conditional ones decided by the programs running when the scan started.
class KeepList {
public:
  KeepList(const std::vector<KeptPath>& entries, const platform::SystemPaths& paths,
           const std::set<std::string>& runningApps);

  /// Whether `path` is a kept path, lies below one or holds one. Compared by components,
  /// ignoring ASCII case: a Mac's disk usually ignores it, and keeping too much is the safe side.
  bool keeps(std::string_view path) const;

  /// Removes the kept items of every category; a category left without items goes too.
  void apply(std::vector<CleanCategory>& categories) const;

private:
  std::vector<std::vector<std::string>> kept_; // lower-cased components
};

} // namespace halcyra::clean
