#pragma once

#include <cstddef>
#include <set>
#include <string>
#include <vector>

#include "clean/CleanItem.h"
#include "clean/ScanContext.h"

namespace halcyra::clean {

/// The two finds in the profiles of one Chromium browser.
struct ChromiumProfileItems {
  std::vector<CleanItem> safe;    ///< caches that are safe to remove; selected
  std::vector<CleanItem> swCache; ///< service worker storage; kept, not selected
};

/// Junk of applications the catalogue does not name, found by the layout the platform gives
/// their data: Chromium profiles, group and sandbox containers, Application Support, device
/// support, simulator temporary files, and the data of applications that are gone. Every
/// listing that fails counts as empty; links are never followed.
class ApplicationDataScanner {
public:
  explicit ApplicationDataScanner(ScanContext& context) : context_(context) {}

  /// The caches of the "Default" and "Profile ..." folders below `basePath`, each list sorted.
  ChromiumProfileItems scanChromiumProfiles(const std::string& basePath);
  /// Logs, caches and tmp folders of the group containers that are not Apple's.
  std::vector<CleanItem> scanGroupContainers();
  /// The Data/Library/Caches folder of each sandbox container not Apple's own, and of the few
  /// Apple containers that hold only caches.
  std::vector<CleanItem> scanSandboxedContainers();
  /// Log, cache and crash folders inside the Application Support folders of applications the
  /// catalogue does not cover.
  std::vector<CleanItem> scanApplicationSupportLogs();
  /// The device support folders of `paths` but the `keep` newest across all of them, newest
  /// first (not sorted by size).
  std::vector<CleanItem> scanDeviceSupportKeeping(std::size_t keep, const std::vector<std::string>& paths);
  /// The entries of each simulator device's data/tmp folder, in listing order.
  std::vector<CleanItem> scanSimulatorTempFiles();
  /// Entries named after a bundle identifier that no installed application has, or is related
  /// to by prefix, untouched for 30 days.
  std::vector<CleanItem> scanOrphanedAppData(const std::set<std::string>& installedBundleIDs);

private:
  std::vector<CleanItem> sorted(const std::vector<std::string>& candidates, bool selected);

  ScanContext& context_;
};

} // namespace halcyra::clean
