#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <plist/plist.h>

#include "ScanFixture.h"
#include "clean/ApplicationDataScanner.h"
#include "clean/BundleIdentifiers.h"

using namespace halcyra;
using namespace halcyra::testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

namespace {

struct ScannerFixture : ScannerContextFixture {
  clean::ApplicationDataScanner scanner{context};

  std::string file(const std::string& relative, std::int64_t size, std::int64_t ageSeconds = 0) const {
    const std::string path = dir.file("home/" + relative, size);
    if (ageSeconds > 0) TempDir::setAge(path, ageSeconds);
    return path;
  }
  void age(const std::string& relative, std::int64_t seconds) const { TempDir::setAge(home + "/" + relative, seconds); }
};

std::string xmlPlist(const std::string& identifier) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>"
         "<key>CFBundleName</key><string>App</string>"
         "<key>CFBundleIdentifier</key><string>" + identifier + "</string></dict></plist>\n";
}

std::string binaryPlist(const std::string& identifier) {
  plist_t dict = plist_new_dict();
  plist_dict_set_item(dict, "CFBundleIdentifier", plist_new_string(identifier.c_str()));
  char* bytes = nullptr;
  std::uint32_t length = 0;
  plist_to_bin(dict, &bytes, &length);
  std::string result(bytes, length);
  std::free(bytes);
  plist_free(dict);
  return result;
}

} // namespace

TEST(ChromiumProfiles, OnlyDefaultAndNumberedProfilesGiveTheirCaches) {
  ScannerFixture f;
  const std::string base = "Library/Application Support/Google/Chrome";
  f.file(base + "/Default/GPUCache/data_1", 300);
  f.file(base + "/Default/Service Worker/ScriptCache/s", 100);
  f.file(base + "/Default/Service Worker/CacheStorage/c", 900);
  f.file(base + "/Profile 2/ShaderCache/x", 500);
  f.file(base + "/Profile 2/GrShaderCache/empty", 0);
  f.file(base + "/My Profile/GPUCache/data", 5000);
  f.file(base + "/Profile1/GPUCache/data", 5000);
  f.file(base + "/Default/Cache/Cache_Data/f", 5000); // not one of the five safe caches

  const auto found = f.scanner.scanChromiumProfiles(f.home + "/" + base);
  EXPECT_THAT(itemPaths(found.safe, f.home + "/" + base),
              ElementsAre("Profile 2/ShaderCache", "Default/GPUCache", "Default/Service Worker/ScriptCache"));
  EXPECT_TRUE(found.safe.front().isSelected);
  EXPECT_THAT(itemPaths(found.swCache, f.home + "/" + base), ElementsAre("Default/Service Worker/CacheStorage"));
  EXPECT_FALSE(found.swCache.front().isSelected);
  EXPECT_THAT(f.scanner.scanChromiumProfiles(f.home + "/missing").safe, IsEmpty());
}

TEST(Containers, AppleContainersAreSkippedByTheirOwnCaseRules) {
  ScannerFixture f;
  f.file("Library/Group Containers/ABC.com.vendor.app/Library/Caches/a", 10);
  f.file("Library/Group Containers/ABC.com.vendor.app/Logs/b", 20);
  f.file("Library/Group Containers/ABC.com.vendor.app/Documents/keep", 1000);
  f.file("Library/Group Containers/group.com.apple.notes/Library/Caches/a", 10);
  f.file("Library/Group Containers/COM.APPLE.Something/tmp/a", 10);
  f.file("Library/Group Containers/systemgroup.com.apple.x/tmp/a", 10);
  EXPECT_THAT(itemPaths(f.scanner.scanGroupContainers(), f.home + "/Library/Group Containers"),
              ElementsAre("ABC.com.vendor.app/Logs", "ABC.com.vendor.app/Library/Caches"));

  f.file("Library/Containers/com.vendor.app/Data/Library/Caches/a", 10);
  f.file("Library/Containers/com.vendor.app/Data/Documents/keep", 1000);
  f.file("Library/Containers/com.apple.stocks/Data/Library/Caches/a", 20);
  f.file("Library/Containers/com.apple.mail/Data/Library/Caches/a", 30);
  f.file("Library/Containers/COM.APPLE.Other/Data/Library/Caches/a", 40);
  EXPECT_THAT(itemPaths(f.scanner.scanSandboxedContainers(), f.home + "/Library/Containers"),
              ElementsAre("COM.APPLE.Other/Data/Library/Caches", "com.apple.stocks/Data/Library/Caches",
                          "com.vendor.app/Data/Library/Caches"));
}

TEST(ApplicationSupport, LogsAndCachesOfUnlistedApplicationsOnly) {
  ScannerFixture f;
  const std::string support = "Library/Application Support/";
  f.file(support + "SomeApp/logs/a.log", 10);
  f.file(support + "SomeApp/Cache/Cache_Data/x", 20);
  f.file(support + "SomeApp/Crashpad/completed/dump", 30);
  f.file(support + "SomeApp/Crashpad/pending/dump", 3000);
  f.file(support + "SomeApp/data.db", 3000);
  f.file(support + "Slack/logs/a.log", 10);
  f.file(support + "COM.1Password.vault/logs/a", 10);
  f.file(support + "com.apple.TCC/log/x", 10);
  f.file(support + ".hidden/logs/x", 10);
  f.file(support + "plainfile", 10);
  EXPECT_THAT(itemPaths(f.scanner.scanApplicationSupportLogs(), f.home + "/" + support + "SomeApp"),
              ElementsAre("Crashpad/completed", "Cache/Cache_Data", "logs"));
}

TEST(DeviceSupport, KeepsTheTwoNewestAcrossAllPlatforms) {
  ScannerFixture f;
  const std::string ios = "Library/Developer/Xcode/iOS DeviceSupport/";
  const std::string watch = "Library/Developer/Xcode/watchOS DeviceSupport/";
  f.file(ios + "17.0/Symbols/a", 100);
  f.file(ios + "17.4/Symbols/a", 100);
  f.file(ios + "16.2/Symbols/a", 500);
  f.file(watch + "10.1/Symbols/a", 100);
  f.file(watch + "9.0/Symbols/a", 900);
  f.age(ios + "17.0", 30 * kDay);
  f.age(ios + "17.4", 1 * kDay);
  f.age(ios + "16.2", 200 * kDay);
  f.age(watch + "10.1", 2 * kDay);
  f.age(watch + "9.0", 300 * kDay);
  const std::vector<std::string> paths{f.home + "/Library/Developer/Xcode/iOS DeviceSupport",
                                       f.home + "/Library/Developer/Xcode/watchOS DeviceSupport",
                                       f.home + "/Library/Developer/Xcode/tvOS DeviceSupport"};
  // Newest first, not by size.
  EXPECT_THAT(itemPaths(f.scanner.scanDeviceSupportKeeping(2, paths), f.home + "/Library/Developer/Xcode"),
              ElementsAre("iOS DeviceSupport/17.0", "iOS DeviceSupport/16.2", "watchOS DeviceSupport/9.0"));

  ScannerFixture few;
  few.file(ios + "17.0/Symbols/a", 100);
  few.file(watch + "10.1/Symbols/a", 100);
  EXPECT_THAT(few.scanner.scanDeviceSupportKeeping(2, {few.home + "/" + ios, few.home + "/" + watch}), IsEmpty());
}

TEST(OrphanedAppData, OnlyOldDataOfApplicationsThatAreGone) {
  ScannerFixture f;
  const std::int64_t old = 31 * kDay;
  f.file("Library/Saved Application State/com.installed.app.savedState/data", 10, 0);
  f.age("Library/Saved Application State/com.installed.app.savedState", old);
  f.file("Library/Saved Application State/com.gone.app.savedState/data", 20);
  f.age("Library/Saved Application State/com.gone.app.savedState", old);
  f.file("Library/Caches/com.installed.app.helper/x", 30);
  f.age("Library/Caches/com.installed.app.helper", old);
  f.file("Library/Caches/com.installed/x", 30); // an installed identifier begins with it
  f.age("Library/Caches/com.installed", old);
  f.file("Library/Caches/com.gone.recent/x", 40); // touched within 30 days
  f.file("Library/Caches/com.apple.Safari/x", 50);
  f.age("Library/Caches/com.apple.Safari", old);
  f.file("Library/Caches/COM.MICROSOFT.teams2/x", 50);
  f.age("Library/Caches/COM.MICROSOFT.teams2", old);
  f.file("Library/Caches/Com.gone.capital/x", 50); // the identifier prefixes regard case
  f.age("Library/Caches/Com.gone.capital", old);
  f.file("Library/Logs/io.gone.tool.log", 60, old);
  f.file("Library/HTTPStorages/com.gone.app/x", 70);
  f.age("Library/HTTPStorages/com.gone.app", old);

  const auto items = f.scanner.scanOrphanedAppData({"com.installed.app", "io.sentry"});
  EXPECT_THAT(itemPaths(items, f.home + "/Library"),
              ElementsAre("HTTPStorages/com.gone.app", "Logs/io.gone.tool.log",
                          "Saved Application State/com.gone.app.savedState"));
  EXPECT_TRUE(items.front().isSelected);
}

TEST(BundleIdentifiers, ReadFromXmlAndBinaryInfoPlistsOfEveryApplicationFolder) {
  TempDir dir;
  const platform::SystemPaths paths(dir.mkdir("home"), dir.mkdir("root"));
  dir.file("root/Applications/Editor.app/Contents/Info.plist", xmlPlist("com.vendor.editor"));
  dir.file("root/Applications/Suite/Tool.app/Contents/Info.plist", binaryPlist("org.vendor.tool"));
  dir.file("root/Applications/Editor.app/Contents/Helpers/Helper.app/Contents/Info.plist", xmlPlist("com.vendor.helper"));
  dir.file("home/Applications/Mine.app/Contents/Info.plist", binaryPlist("dev.me.mine"));
  dir.file("root/System/Library/CoreServices/Finder.app/Contents/Info.plist", xmlPlist("com.apple.finder"));
  dir.file("root/Applications/Broken.app/Contents/Info.plist", "not a property list");
  dir.file("root/Applications/Other/Info.plist", xmlPlist("com.not.a.bundle"));
  dir.file("root/Applications/Array.app/Contents/Info.plist",
           "<plist version=\"1.0\"><array><string>x</string></array></plist>");
  dir.file("elsewhere/Info.plist", xmlPlist("com.behind.link"));
  dir.symlink("root/Applications/Linked.app/Contents/Info.plist", dir / "elsewhere/Info.plist");

  EXPECT_THAT(clean::collectInstalledBundleIDs(paths),
              UnorderedElementsAre("com.vendor.editor", "org.vendor.tool", "com.vendor.helper", "dev.me.mine",
                                   "com.apple.finder", "com.microsoft.VSCode.ShipIt", "io.sentry",
                                   "com.hackemist.SDImageCache", "org.swift.swiftpm"));
  // Without any application folder only the four extra identifiers remain.
  TempDir empty;
  EXPECT_EQ(clean::collectInstalledBundleIDs(platform::SystemPaths(empty.path(), empty.path())).size(), 4u);
}
