#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "clean/ScanTarget.h"
#include "platform/SystemPaths.h"

namespace halcyra::clean {

/// The table as written: a path beginning with "/" is absolute, any other is relative to the home.
/// 257 rows in scan order; the order is the order of the categories and settles which row claims
/// a path that two rows name.
const std::vector<ScanTarget>& catalogueRows();

/// The table with every path resolved: absolute paths through paths.system(...), relative ones through paths.inHome(...).
std::vector<ScanTarget> scanTargets(const platform::SystemPaths& paths);

/// Exact names that "User Caches" never lists. Compared whole and case-sensitively: a name that
/// merely begins with one of them ("com.apple.nsurlsessiond.x") is not protected by this set.
const std::set<std::string>& protectedCacheEntries();

/// The 14 prefixes of names that "User Caches" never lists. Compared case-sensitively
/// (std::string_view::starts_with, no case folding): that is why both "com.apple.spotlight" and
/// "com.apple.Spotlight" stand in the list. "com.apple.audio." ends in a dot on purpose.
const std::vector<std::string>& protectedCachePrefixes();

/// The rule of "User Caches" for one entry name of the user's cache folder: true if the name is
/// in protectedCacheEntries (exactly) or begins with one of protectedCachePrefixes (case-sensitive).
/// The names claimed by other targets (claimedCaches of the scan) are a separate test.
bool isProtectedCacheEntry(std::string_view name);

/// target name -> minimum age in seconds
/// An entry modified later than now minus this age is skipped; exactly at the cutoff is kept.
const std::map<std::string, std::int64_t>& ageFilteredTargets();

/// A Chromium-based browser whose profile folders the Chromium pass walks.
struct ChromiumBrowser { std::string name; std::string basePath; std::string processName; }; // basePath as written (home-relative)

/// The four Chromium browsers in pass order: Chrome, Brave, Edge, Arc. processName is part of the
/// table, but the scan does not consult it.
const std::vector<ChromiumBrowser>& chromiumBrowsers();

/// A place the scan never offers, whichever row or scanner would find it: a credential, a
/// configuration, or data that a program needs while it runs. Nothing in a cache folder is
/// junk just because of where it lies.
struct KeptPath {
  std::string path;   ///< written as the rows write theirs: absolute (below the root) or home-relative
  std::string reason; ///< what would be lost; docs/CLEANING.md shows it
  /// Program names as RunningApplications gives them (lower case): kept only while one of them
  /// runs. Empty: always kept.
  std::vector<std::string> whileRunning;
};

/// Every kept path, one list for the catalogue and the scanners. An item that is a kept path,
/// lies below one, or holds one (taking it whole would take the kept one along) is left out.
const std::vector<KeptPath>& keptPaths();

/// Lower-case file system type names that count as network mounts. Compare the lower-case form
/// of a mount's type against this set.
const std::set<std::string>& networkFilesystemTypes();

} // namespace halcyra::clean
