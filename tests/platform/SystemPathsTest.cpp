#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "platform/FullDiskAccessChecker.h"
#include "platform/Platform.h"
#include "platform/RunningApplications.h"
#include "platform/SystemPaths.h"
#include "support/TempDir.h"

using namespace halcyra::platform;
using halcyra::testing::TempDir;

TEST(SystemPaths, SystemPathsResolveUnderTheRootAndHomePathsUnderTheHome) {
  const SystemPaths real("/home/ann", "/");
  EXPECT_EQ(real.system("/Library/Caches"), "/Library/Caches");
  EXPECT_EQ(real.inHome("Library/Logs"), "/home/ann/Library/Logs");
  const SystemPaths offline("/mnt/disk/Users/ann/", "/mnt/disk/");
  EXPECT_EQ(offline.system("/var/log"), "/mnt/disk/var/log");
  EXPECT_EQ(offline.inHome(".cache"), "/mnt/disk/Users/ann/.cache");
  EXPECT_EQ(offline.expand("~/x"), "/mnt/disk/Users/ann/x");
  EXPECT_EQ(offline.expand("~"), "/mnt/disk/Users/ann");
  EXPECT_EQ(offline.expand("/Volumes"), "/mnt/disk/Volumes");
}

TEST(SystemPaths, TheRunningSystemIsRecognisedByTheRootFoldersIdentityNotItsContents) {
  TempDir dir;
  dir.mkdir("mac/var/log");
  dir.mkdir("mac/Library/Caches");
  dir.symlink("slash", "/");
  EXPECT_TRUE(SystemPaths("/home/ann", "/").rootIsRunningSystem());
  EXPECT_TRUE(SystemPaths("/home/ann", "//").rootIsRunningSystem());
  EXPECT_TRUE(SystemPaths("/home/ann", "/usr/..").rootIsRunningSystem());
  EXPECT_TRUE(SystemPaths("/home/ann", dir / "slash").rootIsRunningSystem());
  EXPECT_FALSE(SystemPaths("/home/ann", dir / "mac").rootIsRunningSystem());
  EXPECT_FALSE(SystemPaths("/home/ann", dir / "missing").rootIsRunningSystem());
}

#ifndef __APPLE__
TEST(SystemPaths, OnLinuxOnlyARootOtherThanTheRunningSystemHoldsAMacsSystemFolders) {
  TempDir dir;
  EXPECT_FALSE(Platform::forSystem(SystemPaths(dir.mkdir("home"), "/")).macSystemLayout);
  EXPECT_TRUE(Platform::forSystem(SystemPaths(dir / "home", dir.mkdir("mac"))).macSystemLayout);
}
#endif

TEST(FullDiskAccessChecker, AnswersFromTheListingOfOneFolderOnly) {
  TempDir home;
  const FullDiskAccessChecker checker(SystemPaths(home.path(), home.path()));
  // Other probes passing do not grant access.
  home.file("Library/Safari/Bookmarks.plist", "x");
  home.mkdir("Library/Messages/StickerCache");
  EXPECT_FALSE(checker.hasFullDiskAccess());
  const std::string denied = checker.diagnosticInfo();
  EXPECT_NE(denied.find("✅ ~/Library/Safari/Bookmarks.plist (readable)"), std::string::npos);
  EXPECT_NE(denied.find("  Result: DENIED"), std::string::npos);

  home.mkdir("Library/Containers/com.apple.stocks"); // empty still counts
  EXPECT_TRUE(checker.hasFullDiskAccess());
  const std::string granted = checker.diagnosticInfo();
  EXPECT_EQ(std::count(granted.begin(), granted.end(), '\n'), 5);
  EXPECT_EQ(granted.rfind("FDA Check — Home: " + home.path() + "\n", 0), 0u);
  EXPECT_NE(granted.find("❌ /Library/Application Support/com.apple.TCC/TCC.db (readable)"), std::string::npos);
  EXPECT_NE(granted.find("  Result: GRANTED"), std::string::npos);
}

TEST(RunningApplications, MatchesNamesWithoutRegardToCaseAndKeepsTheListsSpelling) {
  const std::set<std::string> running{"xcode", "google chrome"};
  EXPECT_EQ(firstRunningProcess({"Safari", "Xcode", "Google Chrome"}, running), "Xcode");
  EXPECT_FALSE(firstRunningProcess({"Safari"}, running).has_value());
}
