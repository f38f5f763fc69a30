#pragma once

#include <string>
#include <vector>

namespace halcyra::clean {

/// One row of the scan catalogue: a named place where junk lies, and how the scan treats it.
struct ScanTarget {
  std::string name;                         ///< category name; key of the special rules and of ageFilteredTargets
  std::string icon;                         ///< SF Symbol name of the category
  std::string section;                      ///< one of the nine sections of the results
  std::vector<std::string> paths;           ///< folders whose direct entries become items, or single files
  bool isWhitelisted = false;               ///< protected: found and kept in the results, shown nowhere, never selected
  std::vector<std::string> skipWhenRunning; ///< application names, matched ignoring case; one running skips the target
  bool requiresFDA = false;                 ///< needs Full Disk Access; without it the target is passed over in silence
};

} // namespace halcyra::clean
