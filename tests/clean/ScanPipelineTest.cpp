#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include "ScanFixture.h"
#include "clean/CatalogueScanner.h"
#include "clean/ScanCatalogue.h"
#include "platform/RunningApplications.h"

using namespace halcyra;
using namespace halcyra::testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

extern char** environ;

namespace {

bool listsCategory(const std::vector<clean::CleanCategory>& categories, const std::string& name) {
  return findCategory(categories, name) != nullptr;
}

} // namespace

TEST(ScanCatalogueRules, UserCachesLeavesClaimedAndProtectedEntriesOut) {
  ScanFixture fixture;
  fixture.homeFile("Library/Caches/com.apple.QuickLook.thumbnailcache/index.sqlite", 300);
  fixture.homeFile("Library/Caches/com.apple.Spotlight.index/x", 10);
  fixture.homeFile("Library/Caches/com.apple.nsurlsessiond/x", 10);
  fixture.homeFile("Library/Caches/com.apple.nsurlsessiond.extra/x", 20);
  fixture.homeFile("Library/Caches/com.example.app/blob", 50);
  fixture.homeFile("Library/Caches/com.example.app/.hidden", 5000);
  fixture.homeFile("Library/Caches/.DS_Store", 10);
  fixture.homeFile("Library/Caches/empty.bin", 0);
  fixture.homeDir("Library/Caches/empty-folder");
  fixture.dir.symlink("home/Library/Caches/link", fixture.dir / "home");
  fixture.homeFile("Library/Logs/com.example.app.log", 7);

  const auto categories = fixture.scan();
  const std::string caches = fixture.home + "/Library/Caches";
  // Largest first; the claimed, protected, hidden, empty and linked entries are not there.
  EXPECT_THAT(itemPaths(categories, "User Caches", caches), ElementsAre("com.example.app", "com.apple.nsurlsessiond.extra"));
  EXPECT_THAT(itemPaths(categories, "QuickLook Cache", caches), ElementsAre("com.apple.QuickLook.thumbnailcache/index.sqlite"));
  const auto* userCaches = findCategory(categories, "User Caches");
  ASSERT_NE(userCaches, nullptr);
  EXPECT_EQ(userCaches->items.front().size, 50); // hidden files inside a folder count nothing
  EXPECT_TRUE(userCaches->isSelected);
  EXPECT_FALSE(userCaches->isWhitelisted);
  EXPECT_EQ(userCaches->section, "User");
  EXPECT_FALSE(userCaches->skipReason);
  EXPECT_EQ(userCaches->selectedSize(), 70);
  EXPECT_EQ(userCaches->selectedCount(), 2u);
}

TEST(ScanCatalogueRules, ProtectedTargetsAreFoundButNeverSelected) {
  ScanFixture fixture;
  fixture.homeFile("Downloads/movie.mkv", 1000);
  const auto categories = fixture.scan();
  const auto* downloads = findCategory(categories, "Downloads");
  ASSERT_NE(downloads, nullptr);
  EXPECT_TRUE(downloads->isWhitelisted);
  EXPECT_FALSE(downloads->isSelected);
  EXPECT_FALSE(downloads->items.front().isSelected);
  EXPECT_EQ(downloads->selectedSize(), 0);
}

TEST(ScanCatalogueRules, MailDownloadsNeedFiveMebibytesInAll) {
  for (const std::int64_t total : {5'242'879LL, 5'242'880LL}) {
    ScanFixture fixture;
    fixture.homeFile("Library/Mail Downloads/a.pdf", total - 1000, 40 * kDay);
    fixture.homeFile("Library/Containers/com.apple.mail/Data/Library/Mail Downloads/b.pdf", 1000, 40 * kDay);
    // Young attachments are not counted at all.
    fixture.homeFile("Library/Mail Downloads/new.pdf", 10'000'000, 2 * kDay);
    const auto categories = fixture.scan();
    EXPECT_EQ(listsCategory(categories, "Mail Downloads"), total == 5'242'880) << total;
  }
}

TEST(ScanCatalogueRules, AgeLimitsCountFromTheScanAndKeepTheCutoffItself) {
  TempDir dir;
  const platform::SystemPaths paths(dir.mkdir("home"), dir.mkdir("root"));
  const auto now = std::chrono::system_clock::now();
  const auto cutoff = now - std::chrono::seconds(604'800);
  const auto setTime = [](const std::string& path, clean::TimePoint time) {
    const auto ns = std::chrono::duration_cast<std::chrono::nanoseconds>(time.time_since_epoch()).count();
    const timespec stamp{static_cast<time_t>(ns / 1'000'000'000), static_cast<long>(ns % 1'000'000'000)};
    const timespec times[2] = {stamp, stamp};
    ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, AT_SYMLINK_NOFOLLOW), 0);
  };
  setTime(dir.file("root/var/log/at-cutoff.log", 10), cutoff);
  setTime(dir.file("root/var/log/just-after.log", 10), cutoff + std::chrono::seconds(1));
  TempDir::setAge(dir.file("root/var/log/six-days.log", 10), 6 * kDay);
  TempDir::setAge(dir.file("root/var/log/eight-days.log", 10), 8 * kDay);

  platform::TreeSizer sizer(1);
  clean::ScanContext context(paths, sizer, now);
  const auto targets = clean::scanTargets(paths);
  clean::CatalogueScanner scanner(context, targets);
  const auto systemLogs = std::find_if(targets.begin(), targets.end(), [](const auto& t) { return t.name == "System Logs"; });
  ASSERT_NE(systemLogs, targets.end());
  const auto items = scanner.collect(*systemLogs, cutoff);
  EXPECT_THAT(itemPaths(items, dir / "root/var/log"), UnorderedElementsAre("at-cutoff.log", "eight-days.log"));
}

TEST(ScanCatalogueRules, ClaimedNamesComeFromRowsThatNameAFolderOfTheCacheOrLogFolderItself) {
  TempDir dir;
  const platform::SystemPaths paths(dir.mkdir("home"), "/");
  platform::TreeSizer sizer(1);
  clean::ScanContext context(paths, sizer, std::chrono::system_clock::now());
  const clean::CatalogueScanner scanner(context, clean::scanTargets(paths));
  EXPECT_TRUE(scanner.claimedCaches().contains("com.apple.QuickLook.thumbnailcache"));
  EXPECT_TRUE(scanner.claimedCaches().contains("Firefox"));
  // "Library/Caches/Google/Chrome" lies deeper: "Google" is not claimed by it.
  EXPECT_FALSE(scanner.claimedCaches().contains("Google"));
  EXPECT_FALSE(scanner.claimedCaches().contains("Chrome"));
}

TEST(ScanOwnerRunning, ARunningOwnerSkipsItsTargetsWithAReason) {
  ScanFixture fixture;
  fixture.running = {"xcode", "firefox"};
  fixture.homeFile("Library/Developer/Xcode/DerivedData/App-abc/Build/x.o", 100);
  fixture.homeFile("Library/Caches/com.apple.dt.Xcode/cache.db", 100);
  fixture.homeFile("Library/Caches/Firefox/Profiles/cache2", 100);
  const auto categories = fixture.scan();

  const auto* derived = findCategory(categories, "Xcode Derived Data");
  ASSERT_NE(derived, nullptr);
  EXPECT_EQ(derived->skipReason, "Xcode is running");
  EXPECT_THAT(derived->items, IsEmpty());
  EXPECT_FALSE(derived->isSelected);
  EXPECT_FALSE(derived->isWhitelisted);
  // Targets without an owner are scanned all the same.
  EXPECT_THAT(itemPaths(categories, "Xcode Caches", fixture.home), ElementsAre("Library/Caches/com.apple.dt.Xcode/cache.db"));
  // The reason keeps the catalogue's own spelling.
  ASSERT_NE(findCategory(categories, "Firefox"), nullptr);
  EXPECT_EQ(findCategory(categories, "Firefox")->skipReason, "firefox is running");
  EXPECT_THAT(fixture.statuses, ::testing::Contains("Skipped Xcode Derived Data · Xcode is running"));
  // A skipped target still reports that it is being scanned first.
  const auto scanning = std::find(fixture.statuses.begin(), fixture.statuses.end(), "Scanning Xcode Derived Data...");
  ASSERT_NE(scanning, fixture.statuses.end());
  EXPECT_EQ(*(scanning + 1), "Skipped Xcode Derived Data · Xcode is running");
}

TEST(ScanOwnerRunning, ARealProcessOfTheOwnersNameSkipsTheTarget) {
  // The snapshot comes from the process list, so start a process named like the owner.
  TempDir dir;
  const std::string xcode = dir / "Xcode";
  std::filesystem::copy_file("/bin/sleep", xcode);
  ::chmod(xcode.c_str(), 0755);
  pid_t pid = -1;
  char* argv[] = {const_cast<char*>(xcode.c_str()), const_cast<char*>("30"), nullptr};
  ASSERT_EQ(::posix_spawn(&pid, xcode.c_str(), nullptr, nullptr, argv, environ), 0);

  ScanFixture fixture;
  fixture.homeFile("Library/Developer/Xcode/Archives/2024/app.xcarchive", 100);
  platform::Platform system = fixture.platform();
  system.runningApps = std::make_shared<platform::SystemRunningApplications>();
  // The process may take a moment to show under its new name.
  std::set<std::string> names;
  for (int attempt = 0; attempt < 200 && !names.contains("xcode"); ++attempt) {
    names = system.runningApps->snapshotRunningAppNames();
    if (!names.contains("xcode")) ::usleep(10'000);
  }
  const auto categories = clean::NativeCleanService(system).scan(nullptr);
  ::kill(pid, SIGKILL);
  ::waitpid(pid, nullptr, 0);

  const auto* archives = findCategory(categories, "Xcode Archives");
  ASSERT_NE(archives, nullptr);
  EXPECT_EQ(archives->skipReason, "Xcode is running");
}

TEST(ScanOwnerRunning, ARunningSimulatorSkipsSimulatorFilesWithoutAReport) {
  ScanFixture fixture;
  fixture.homeFile("Library/Developer/CoreSimulator/Devices/DEV1/data/tmp/a.tmp", 10);
  fixture.running = {"simulator"};
  auto categories = fixture.scan();
  const auto* skipped = findCategory(categories, "Simulator Temp Files");
  ASSERT_NE(skipped, nullptr);
  EXPECT_EQ(skipped->skipReason, "Simulator is running");
  EXPECT_THAT(fixture.statuses, ::testing::Not(::testing::Contains("Scanning Simulator temp files...")));

  fixture.running.clear();
  categories = fixture.scan();
  EXPECT_THAT(itemPaths(categories, "Simulator Temp Files", fixture.home),
              ElementsAre("Library/Developer/CoreSimulator/Devices/DEV1/data/tmp/a.tmp"));
}

TEST(ScanFullDiskAccess, SystemTargetsNeedTheGrantAndTheTrashDoesNot) {
  ScanFixture fixture;
  fixture.rootFile("Library/Caches/com.vendor.daemon/cache", 100);
  fixture.trash->answer = platform::TrashSummary{3, 4096};
  fixture.trash->path = fixture.home + "/.Trash";

  auto categories = fixture.scan();
  EXPECT_FALSE(listsCategory(categories, "System Caches"));
  EXPECT_THAT(fixture.statuses, ::testing::Not(::testing::Contains("Scanning System Caches...")));
  const auto* trash = findCategory(categories, "Trash (3 items)");
  ASSERT_NE(trash, nullptr);
  ASSERT_EQ(trash->items.size(), 1u);
  EXPECT_EQ(trash->items.front().path, fixture.home + "/.Trash");
  EXPECT_EQ(trash->items.front().size, 4096);
  EXPECT_EQ(trash->section, "User");

  fixture.grantFullDiskAccess();
  categories = fixture.scan();
  EXPECT_THAT(itemPaths(categories, "System Caches", fixture.root), ElementsAre("Library/Caches/com.vendor.daemon"));
}

TEST(ScanHostileFiles, UnreadableFoldersFifosSocketsAndOddNamesNeitherStopNorBlockTheScan) {
  ScanFixture fixture;
  const std::string caches = fixture.homeDir("Library/Caches");
  fixture.homeFile("Library/Caches/locked/secret", 100);
  ::chmod((caches + "/locked").c_str(), 0000);
  fixture.homeFile("Library/Caches/mixed/readable", 30);
  fixture.homeFile("Library/Caches/mixed/closed/inner", 1000);
  ::chmod((caches + "/mixed/closed").c_str(), 0000);
  ASSERT_EQ(::mkfifo((caches + "/pipe").c_str(), 0600), 0);
  ASSERT_EQ(::mkfifo((fixture.homeDir("Library/Caches/withpipe") + "/pipe").c_str(), 0600), 0);
  fixture.homeFile("Library/Caches/withpipe/data", 5);
  const int sock = ::socket(AF_UNIX, SOCK_STREAM, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  const std::string socketPath = caches + "/sock";
  ASSERT_LT(socketPath.size(), sizeof(address.sun_path));
  std::copy(socketPath.begin(), socketPath.end(), address.sun_path);
  ASSERT_EQ(::bind(sock, reinterpret_cast<sockaddr*>(&address), sizeof(address)), 0);
  const std::string oddName = std::string("bad\xff\xfe") + "name";
  fixture.homeFile("Library/Caches/" + oddName + "/data", 40);

  const auto categories = fixture.scan();
  ::close(sock);
  ::chmod((caches + "/locked").c_str(), 0755);
  ::chmod((caches + "/mixed/closed").c_str(), 0755);

  const auto paths = itemPaths(categories, "User Caches", caches);
  // A folder that cannot be read weighs nothing unless run as a user that reads everything.
  EXPECT_THAT(paths, ::testing::IsSupersetOf({oddName, std::string("mixed"), std::string("withpipe")}));
  EXPECT_THAT(paths, ::testing::Not(::testing::Contains("pipe")));
  EXPECT_THAT(paths, ::testing::Not(::testing::Contains("sock")));
  EXPECT_EQ(fixture.statuses.back(), "Scan complete");
}

TEST(ScanTrash, FindersAnswerBecomesOneItemForTheWholeTrash) {
  const std::vector<std::pair<std::string, std::optional<std::string>>> answers{
      {"echo ' 3,4096 '", "Trash (3 items)"},
      {"exit 1", std::nullopt},
  };
  for (const auto& [script, expected] : answers) {
    ScanFixture fixture;
    fixture.tool("/usr/bin/osascript", script);
    platform::Platform system = fixture.platform();
    system.trash = std::make_shared<platform::FinderTrash>(system.processes, fixture.home);
    const auto categories = clean::NativeCleanService(system).scan(nullptr);
    const auto trash = std::find_if(categories.begin(), categories.end(),
                                    [](const auto& category) { return category.name.starts_with("Trash"); });
    if (!expected) {
      EXPECT_EQ(trash, categories.end()) << script;
      continue;
    }
    ASSERT_NE(trash, categories.end()) << script;
    EXPECT_EQ(trash->name, *expected);
    ASSERT_EQ(trash->items.size(), 1u);
    EXPECT_EQ(trash->items.front().path, fixture.home + "/.Trash");
    EXPECT_EQ(trash->items.front().size, 4096);
    EXPECT_TRUE(trash->isSelected);
  }
}

TEST(ScanCatalogueRules, OverlappingPathsOfOneTargetListTheFolderAndItsEntries) {
  ScanFixture fixture;
  fixture.homeFile("Library/Application Support/com.apple.wallpaper/aerials/thumbnails/a.heic", 300);
  fixture.homeFile("Library/Application Support/com.apple.wallpaper/aerials/videos/b.mov", 5000);
  const auto categories = fixture.scan();
  EXPECT_THAT(itemPaths(categories, "Aerial Wallpapers", fixture.home + "/Library/Application Support/com.apple.wallpaper"),
              ElementsAre("aerials", "aerials/thumbnails/a.heic"));
  EXPECT_EQ(findCategory(categories, "Aerial Wallpapers")->items.front().size, 5300);
}
