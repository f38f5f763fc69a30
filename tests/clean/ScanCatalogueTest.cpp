#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "clean/ScanCatalogue.h"
#include "clean/Sections.h"

using namespace halcyra::clean;
using halcyra::platform::SystemPaths;

namespace {

std::size_t indexOf(const std::vector<ScanTarget>& rows, const std::string& name) {
  const auto it = std::find_if(rows.begin(), rows.end(), [&](const ScanTarget& row) { return row.name == name; });
  return static_cast<std::size_t>(it - rows.begin());
}

std::set<std::string> namesWhere(const std::vector<ScanTarget>& rows, bool (*test)(const ScanTarget&)) {
  std::set<std::string> names;
  for (const auto& row : rows) {
    if (test(row)) names.insert(row.name);
  }
  return names;
}

} // namespace

TEST(ScanCatalogue, CountOrderAndUniqueNames) {
  const auto& rows = catalogueRows();
  ASSERT_EQ(rows.size(), 257u);
  EXPECT_EQ(rows.front().name, "System Caches");
  EXPECT_EQ(rows.back().name, "Vagrant");
  EXPECT_LT(indexOf(rows, "User Caches"), indexOf(rows, "QuickLook Cache"));
  EXPECT_LT(indexOf(rows, "QuickLook Cache"), rows.size());

  std::set<std::string> names;
  for (const auto& row : rows) EXPECT_TRUE(names.insert(row.name).second) << "duplicate name " << row.name;
}

TEST(ScanCatalogue, SectionsAreKnownContiguousAndCountedAsTheHeadingsSay) {
  const auto& rows = catalogueRows();
  const std::vector<std::pair<std::string, std::size_t>> expected{
      {"System", 12},       {"User", 35},           {"Browsers", 17},
      {"Developer", 61},    {"Editors", 9},         {"Applications", 102},
      {"Cloud & Office", 14}, {"Backups", 3},       {"Virtualization", 4},
  };
  ASSERT_EQ(sectionNames().size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) EXPECT_EQ(sectionNames()[i], expected[i].first);

  // The table stands section by section in the order of the nine sections.
  std::size_t row = 0;
  for (const auto& [section, count] : expected) {
    for (std::size_t i = 0; i < count; ++i, ++row) {
      ASSERT_LT(row, rows.size());
      EXPECT_EQ(rows[row].section, section) << rows[row].name;
    }
  }
  EXPECT_EQ(row, rows.size());
}

TEST(ScanCatalogue, EveryPathNamesSomethingBelowTheHomeOrTheRoot) {
  for (const auto& row : catalogueRows()) {
    EXPECT_FALSE(row.name.empty());
    EXPECT_FALSE(row.icon.empty()) << row.name;
    ASSERT_FALSE(row.paths.empty()) << row.name;
    for (const auto& path : row.paths) {
      EXPECT_FALSE(path.empty()) << row.name;
      EXPECT_NE(path, "/") << row.name;
      EXPECT_NE(path, ".") << row.name;
      EXPECT_NE(path, "~") << row.name;
      EXPECT_FALSE(path.starts_with("~")) << row.name << ": " << path;
      EXPECT_EQ(path.find(".."), std::string::npos) << row.name << ": " << path;
      EXPECT_EQ(path.find("//"), std::string::npos) << row.name << ": " << path;
      EXPECT_FALSE(path.ends_with("/")) << row.name << ": " << path;
    }
    std::set<std::string> distinct(row.paths.begin(), row.paths.end());
    EXPECT_EQ(distinct.size(), row.paths.size()) << row.name;
  }
}

TEST(ScanCatalogue, FlagsStandExactlyOnTheListedRows) {
  const auto& rows = catalogueRows();
  EXPECT_EQ(namesWhere(rows, [](const ScanTarget& r) { return r.isWhitelisted; }),
            (std::set<std::string>{"Downloads", "Recent Items", "iOS Device Backups"}));

  std::set<std::string> fda{"Siri Suggestions", "Messages Cache", "Messages Preview Cache"};
  for (const auto& row : rows) {
    if (row.section == "System") fda.insert(row.name);
  }
  EXPECT_EQ(fda.size(), 15u);
  EXPECT_EQ(namesWhere(rows, [](const ScanTarget& r) { return r.requiresFDA; }), fda);

  std::map<std::string, std::vector<std::string>> skipping;
  for (const auto& row : rows) {
    if (!row.skipWhenRunning.empty()) skipping[row.name] = row.skipWhenRunning;
  }
  const std::map<std::string, std::vector<std::string>> expected{
      {"Firefox", {"firefox"}},
      {"Xcode Derived Data", {"Xcode"}},
      {"Xcode Archives", {"Xcode"}},
      {"Xcode Documentation", {"Xcode"}},
      {"Xcode IB Support Cache", {"Xcode"}},
      {"iOS Simulator Cache", {"Simulator"}},
  };
  EXPECT_EQ(skipping, expected);

  // Every row named by a side table or a rule of its own exists.
  for (const auto& [name, seconds] : ageFilteredTargets()) {
    EXPECT_LT(indexOf(rows, name), rows.size()) << name;
    EXPECT_TRUE(seconds == 604800 || seconds == 1209600 || seconds == 2592000) << name;
  }
  EXPECT_EQ(ageFilteredTargets().size(), 11u);
  EXPECT_EQ(ageFilteredTargets().at("macOS Installer Files"), 1209600);
  EXPECT_EQ(ageFilteredTargets().at("Mail Downloads"), 2592000);
  for (const char* name : {"User Caches", "User Logs", "Trash", "Third-Party System Logs", "Mail Downloads",
                           "Xcode Device Support", "Shell History & Temp", "Aerial Wallpapers"}) {
    EXPECT_LT(indexOf(rows, name), rows.size()) << name;
  }
}

TEST(ScanCatalogue, AbsolutePathsGoThroughTheRootAndOthersThroughTheHome) {
  const SystemPaths fake("/fake/home", "/fake/root");
  const auto& rows = catalogueRows();
  const auto targets = scanTargets(fake);
  ASSERT_EQ(targets.size(), rows.size());

  std::set<std::string> withAbsolutePaths;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const auto& row = rows[i];
    const auto& target = targets[i];
    EXPECT_EQ(target.name, row.name);
    EXPECT_EQ(target.icon, row.icon);
    EXPECT_EQ(target.section, row.section);
    EXPECT_EQ(target.isWhitelisted, row.isWhitelisted);
    EXPECT_EQ(target.skipWhenRunning, row.skipWhenRunning);
    EXPECT_EQ(target.requiresFDA, row.requiresFDA);
    ASSERT_EQ(target.paths.size(), row.paths.size()) << row.name;
    for (std::size_t p = 0; p < row.paths.size(); ++p) {
      const std::string expected =
          row.paths[p].starts_with('/') ? "/fake/root" + row.paths[p] : "/fake/home/" + row.paths[p];
      EXPECT_EQ(target.paths[p], expected) << row.name;
      if (row.paths[p].starts_with('/')) withAbsolutePaths.insert(row.name);
    }
  }
  // Only the System rows and the simulator runtimes live outside the home.
  std::set<std::string> expected{"Simulator Runtime Caches"};
  for (const auto& row : rows) {
    if (row.section == "System") expected.insert(row.name);
  }
  EXPECT_EQ(withAbsolutePaths, expected);

  const auto mixed = scanTargets(SystemPaths("/Users/ann"));
  EXPECT_EQ(mixed.front().paths, (std::vector<std::string>{"/Library/Caches"}));
  EXPECT_EQ(mixed[indexOf(mixed, "Trash")].paths, (std::vector<std::string>{"/Users/ann/.Trash"}));
  EXPECT_EQ(mixed.back().paths, (std::vector<std::string>{"/Users/ann/.vagrant.d/tmp"}));
}

TEST(ScanCatalogue, ProtectedCacheEntriesAreExactAndPrefixesCaseSensitive) {
  EXPECT_EQ(protectedCacheEntries().size(), 2u);
  EXPECT_EQ(protectedCachePrefixes().size(), 14u);

  EXPECT_TRUE(isProtectedCacheEntry("com.apple.nsurlsessiond"));
  EXPECT_TRUE(isProtectedCacheEntry("com.apple.ap.adprivacyd"));
  EXPECT_FALSE(isProtectedCacheEntry("com.apple.nsurlsessiond.extra")); // exact names only
  EXPECT_FALSE(isProtectedCacheEntry("com.apple.NSURLSessiond"));

  EXPECT_TRUE(isProtectedCacheEntry("com.apple.Spotlight"));
  EXPECT_TRUE(isProtectedCacheEntry("com.apple.SpotlightIndex"));
  EXPECT_TRUE(isProtectedCacheEntry("com.apple.spotlight.knowledge"));
  EXPECT_FALSE(isProtectedCacheEntry("com.apple.SPOTLIGHT")); // with regard to case
  EXPECT_FALSE(isProtectedCacheEntry("com.apple.Finder"));
  EXPECT_TRUE(isProtectedCacheEntry("com.apple.finder"));
  EXPECT_TRUE(isProtectedCacheEntry("com.apple.audio.AudioComponentRegistrar"));
  EXPECT_FALSE(isProtectedCacheEntry("com.apple.audio")); // the prefix ends in a dot
  EXPECT_TRUE(isProtectedCacheEntry("coreaudiod"));
  EXPECT_TRUE(isProtectedCacheEntry("CloudKit"));
  EXPECT_FALSE(isProtectedCacheEntry("cloudkit"));
  EXPECT_TRUE(isProtectedCacheEntry("com.apple.dock.extra"));

  // Claimed by a named row, not protected: "QuickLook Cache" takes it, not this rule.
  EXPECT_FALSE(isProtectedCacheEntry("com.apple.QuickLook.thumbnailcache"));
  EXPECT_FALSE(isProtectedCacheEntry("com.google.Chrome"));
  EXPECT_FALSE(isProtectedCacheEntry(""));
}

TEST(ScanCatalogue, SideLists) {
  const auto& browsers = chromiumBrowsers();
  ASSERT_EQ(browsers.size(), 4u);
  EXPECT_EQ(browsers[0].name, "Chrome");
  EXPECT_EQ(browsers[0].basePath, "Library/Application Support/Google/Chrome");
  EXPECT_EQ(browsers[0].processName, "Google Chrome");
  EXPECT_EQ(browsers[1].name, "Brave");
  EXPECT_EQ(browsers[2].name, "Edge");
  EXPECT_EQ(browsers[3].name, "Arc");
  EXPECT_EQ(browsers[3].basePath, "Library/Application Support/Arc");

  EXPECT_EQ(networkFilesystemTypes(), (std::set<std::string>{"nfs", "smbfs", "afpfs", "cifs", "webdav"}));
}
