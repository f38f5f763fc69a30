#pragma once

#include <string>
#include <vector>

#include "clean/CleanItem.h"
#include "clean/CleanServiceProtocol.h"
#include "clean/ScanContext.h"

namespace halcyra::clean {

/// Build output in the user's source trees ("node_modules", "target", ".venv", ...): a walk
/// of the usual project folders of the home, at most six levels deep, that never enters an
/// artifact, a version-control or system folder, or a hidden folder. Folders touched in the
/// last 7 days stay. Items start unselected.
class ProjectArtifactScanner {
public:
  explicit ProjectArtifactScanner(ScanContext& context) : context_(context) {}

  /// Reports "Scanning projects in <folder>..." for each project folder that exists; the
  /// items come sorted by size, largest first.
  std::vector<CleanItem> scanProjectArtifacts(const StatusCallback& onProgress);

  /// "vendor" counts only beside a "composer.json"; "bin" only when it holds "Debug" or
  /// "Release" and its parent holds a .NET project file. Every other name counts.
  static bool isGuardedArtifactSafe(const std::string& name, const std::string& parentPath);

private:
  ScanContext& context_;
};

} // namespace halcyra::clean
