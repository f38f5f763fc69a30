#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "clean/ScanCatalogue.h"

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

TEST(ScanCatalogue, NamesAreUniqueAndEveryPathNamesSomethingBelowTheHomeOrTheRoot) {
  std::set<std::string> names;
  for (const auto& row : catalogueRows()) {
    EXPECT_FALSE(row.name.empty());
    EXPECT_TRUE(names.insert(row.name).second) << "duplicate name " << row.name;
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

TEST(ScanCatalogue, OnlyTheListedRowsAreProtectedAndEveryRowARuleNamesExists) {
  const auto& rows = catalogueRows();
  EXPECT_EQ(namesWhere(rows, [](const ScanTarget& r) { return r.isWhitelisted; }),
            (std::set<std::string>{"Downloads", "Recent Items", "iOS Device Backups"}));
  for (const auto& [name, seconds] : ageFilteredTargets()) EXPECT_LT(indexOf(rows, name), rows.size()) << name;
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
    }
  }
  const auto mixed = scanTargets(SystemPaths("/Users/ann"));
  EXPECT_EQ(mixed.front().paths, (std::vector<std::string>{"/Library/Caches"}));
  EXPECT_EQ(mixed[indexOf(mixed, "Trash")].paths, (std::vector<std::string>{"/Users/ann/.Trash"}));
  EXPECT_EQ(mixed.back().paths, (std::vector<std::string>{"/Users/ann/.vagrant.d/tmp"}));
}

TEST(ScanCatalogue, ProtectedCacheEntriesAreExactAndPrefixesCaseSensitive) {
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
