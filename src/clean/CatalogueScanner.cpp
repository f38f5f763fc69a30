#include "clean/CatalogueScanner.h"

#include "clean/ScanCatalogue.h"

namespace halcyra::clean {
namespace {

std::set<std::string> claimedNames(const std::vector<ScanTarget>& targets, const std::string& exceptTarget,
                                   const std::string& folder) {
  std::set<std::string> names;
  for (const auto& target : targets) {
    if (target.name == exceptTarget) continue;
    for (const auto& path : target.paths) {
      if (parentPath(path) == folder) names.insert(lastComponent(path));
    }
  }
  return names;
}

} // namespace

CatalogueScanner::CatalogueScanner(ScanContext& context, const std::vector<ScanTarget>& targets)
    : context_(context),
      claimedCaches_(claimedNames(targets, "User Caches", context.paths().inHome("Library/Caches"))),
      claimedLogs_(claimedNames(targets, "User Logs", context.paths().inHome("Library/Logs"))) {}

bool CatalogueScanner::leavesOut(const ScanTarget& target, const std::string& name) const {
  if (name == ".DS_Store" || name == ".localized") return true;
  if (target.name == "User Caches") return isProtectedCacheEntry(name) || claimedCaches_.contains(name);
  if (target.name == "User Logs") return claimedLogs_.contains(name);
  if (target.name == "Third-Party System Logs") return name == "DiagnosticReports";
  return false;
}

std::vector<CleanItem> CatalogueScanner::collect(const ScanTarget& target, std::optional<TimePoint> cutoff) {
  // Every candidate of the target's paths is measured in one batch, in the order found.
  std::vector<std::string> candidates;
  for (const auto& written : target.paths) {
    const std::string path = written.starts_with("~") ? context_.paths().expand(written) : written;
    switch (pathKind(path)) {
    case PathKind::directory: {
      const auto entries = listDirectory(path);
      if (!entries) break;
      for (const auto& entry : *entries) {
        if (leavesOut(target, entry.name)) continue;
        const std::string entryPath = path + "/" + entry.name;
        if (cutoff && isNewerThan(entryPath, *cutoff)) continue;
        candidates.push_back(entryPath);
      }
      break;
    }
    case PathKind::file:
      if (cutoff && isNewerThan(path, *cutoff)) break;
      candidates.push_back(path);
      break;
    default: // missing, or a link that is never followed, or a special file
      break;
    }
  }
  return context_.measuredItems(candidates, !target.isWhitelisted);
}

} // namespace halcyra::clean
