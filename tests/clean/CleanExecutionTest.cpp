#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <sys/stat.h>

#include "clean/NativeCleanService.h"
#include "support/FakePrivilegedRunner.h"
#include "ScanFixture.h"
#include "support/OrdinaryRights.h"
#include "support/PrivateMounts.h"
#include "support/TempDir.h"
#include "support/TreeSnapshot.h"

using namespace halcyra;
using clean::CleanItem;
using clean::CleanResult;
using clean::NativeCleanService;
using ::testing::ElementsAre;
using halcyra::testing::existsNoFollow;
using halcyra::testing::FakePrivilegedRunner;
using halcyra::testing::OrdinaryRights;
using halcyra::testing::readFile;
using halcyra::testing::TempDir;
using halcyra::testing::treeSnapshot;

namespace {

/// A Trash whose emptying fails, counting the attempts.
class RefusingTrash final : public platform::Trash {
public:
  std::optional<platform::TrashSummary> summary() override { return std::nullopt; }
  bool empty() override {
    ++attempts;
    return false;
  }
  std::string itemPath() const override { return path; }

  std::string path;
  int attempts = 0;
};

/// Answers "granted" without running anything: a prompt that returns without a report.
class SilentGrant final : public platform::PrivilegedRunner {
public:
  bool runShellLine(const std::string&) override { return true; }
  platform::PrivilegedOutput runHelper(const std::vector<std::string>&) override { return {true, {}}; }
};

/// A clean service over a fake home, with the given privileged runner and Trash.
struct Fixture {
  TempDir dir;
  std::vector<std::string> statuses;

  NativeCleanService service(std::shared_ptr<platform::PrivilegedRunner> privileged,
                             std::shared_ptr<platform::Trash> trash = nullptr) const {
    platform::Platform platform;
    platform.paths = platform::SystemPaths(dir.mkdir("home"), dir.mkdir("root"));
    platform.privileged = std::move(privileged);
    platform.trash = std::move(trash);
    return NativeCleanService(std::move(platform));
  }

  CleanResult clean(NativeCleanService& service, const std::vector<CleanItem>& items) {
    return service.clean(items, [&](const std::string& text) { statuses.push_back(text); });
  }

  std::string precious() const {
    dir.file("precious/letter.txt", "dear diary");
    dir.file("precious/photos/one.jpg", 3000);
    return dir / "precious";
  }
};

CleanItem item(const std::string& path, std::int64_t size) { return CleanItem{"id", path, size, true}; }

// Names that have broken quoting somewhere, one of them not UTF-8.
const std::vector<std::string> kHostileNames = {"a'b",   "a\"b",  "a\\b", "a\\\"b", "$(touch pwned)", "`touch pwned`",
                                                "l1\nl2", "-rf",  "--",   " lead",  "x$HOME",          "\xff\xfe"};

} // namespace

TEST(CleanExecution, AnEmptyListFreesNothingAndOnlySaysCleanupComplete) {
  Fixture fixture;
  auto runner = std::make_shared<FakePrivilegedRunner>(FakePrivilegedRunner::Answer::grant);
  auto service = fixture.service(runner);
  const CleanResult result = fixture.clean(service, {});
  EXPECT_EQ(result.freedBytes, 0);
  EXPECT_EQ(result.itemsCleaned, 0);
  EXPECT_GE(result.duration, 0.0);
  EXPECT_THAT(fixture.statuses, ElementsAre("Cleanup complete"));
  EXPECT_TRUE(runner->prompts() == 0);
}

TEST(CleanExecution, CountsTheScannedSizesOfWhatIsGoneAndLeavesTheRestOutSilently) {
  Fixture fixture;
  const auto& dir = fixture.dir;
  auto runner = std::make_shared<FakePrivilegedRunner>(FakePrivilegedRunner::Answer::grant);
  auto service = fixture.service(runner);
  const auto file = dir.file("home/Library/Caches/a.bin", 5);
  dir.file("home/Library/Caches/com.example.app/blobs/1", 5);
  const auto folder = dir / "home/Library/Caches/com.example.app";

  const CleanResult result = fixture.clean(service, {item(file, 111),                                // not re-measured
                                                     item(folder, 2000),
                                                     item(dir / "home/Library/Logs/vanished.log", 7), // gone before
                                                     item("Library/relative", 9)});                   // never plain
  EXPECT_EQ(result.freedBytes, 2111);
  EXPECT_EQ(result.itemsCleaned, 2);
  EXPECT_FALSE(existsNoFollow(file));
  EXPECT_FALSE(existsNoFollow(folder));
  EXPECT_TRUE(existsNoFollow(dir / "home/Library/Caches"));
  EXPECT_THAT(fixture.statuses, ElementsAre("Removing a.bin...", "Removing com.example.app...",
                                            "Removing vanished.log...", "Removing relative...", "Cleanup complete"));
  EXPECT_TRUE(runner->prompts() == 0);
}

TEST(CleanExecution, EmptiesTheTrashAsOneItemAndKeepsItsFolders) {
  Fixture fixture;
  const auto& dir = fixture.dir;
  const auto precious = fixture.precious();
  const auto before = treeSnapshot(precious);
  const auto trashDir = dir / "home/.local/share/Trash";
  dir.file("home/.local/share/Trash/files/report.pdf", 100);
  dir.file("home/.local/share/Trash/files/old project/main.c", 30);
  dir.symlink("home/.local/share/Trash/files/shortcut", precious);
  dir.file("home/.local/share/Trash/info/report.pdf.trashinfo", "[Trash Info]\n");
  auto service = fixture.service(nullptr, std::make_shared<platform::FreedesktopTrash>(trashDir));

  const CleanResult result = fixture.clean(service, {item(trashDir, 130)});
  EXPECT_EQ(result.freedBytes, 130);
  EXPECT_EQ(result.itemsCleaned, 1);
  EXPECT_TRUE(treeSnapshot(trashDir + "/files").empty());
  EXPECT_TRUE(treeSnapshot(trashDir + "/info").empty());
  EXPECT_TRUE(existsNoFollow(trashDir + "/files"));
  EXPECT_TRUE(existsNoFollow(trashDir + "/info"));
  EXPECT_EQ(treeSnapshot(precious), before);
  EXPECT_THAT(fixture.statuses, ElementsAre("Removing Trash...", "Cleanup complete"));
}

TEST(CleanExecution, ATrashThatWillNotEmptyIsLeftOutWithoutASecondAttemptOrAPrompt) {
  Fixture fixture;
  auto trash = std::make_shared<RefusingTrash>();
  trash->path = fixture.dir.mkdir("home/.Trash");
  fixture.dir.file("home/.Trash/kept", 1);
  auto runner = std::make_shared<FakePrivilegedRunner>(FakePrivilegedRunner::Answer::grant);
  auto service = fixture.service(runner, trash);
  const CleanResult result = fixture.clean(service, {item(trash->path, 4096)});
  EXPECT_EQ(result.freedBytes, 0);
  EXPECT_EQ(result.itemsCleaned, 0);
  EXPECT_EQ(trash->attempts, 1);
  EXPECT_TRUE(runner->prompts() == 0);
  EXPECT_TRUE(existsNoFollow(fixture.dir / "home/.Trash/kept"));
}

TEST(CleanExecution, RefusedItemsGoToOnePromptAndCountWhenTheyAreGoneAfterIt) {
  for (const auto answer : {FakePrivilegedRunner::Answer::grant, FakePrivilegedRunner::Answer::refuse}) {
    Fixture fixture;
    const auto& dir = fixture.dir;
    const auto locked = dir.mkdir("root/Library/Caches/locked");
    std::vector<CleanItem> items{item(dir.file("home/Library/Caches/free.bin", 1), 1000)};
    std::vector<std::string> lockedPaths;
    for (int i = 0; i < 10; ++i) {
      const std::string name = "root/Library/Caches/locked/item" + std::to_string(i);
      // Files, and folders whose contents can go but which cannot leave the locked folder.
      lockedPaths.push_back(i % 2 == 0 ? dir.file(name, 3) : dir.file(name + "/data", 3).substr(0, (dir / name).size()));
      items.push_back(item(lockedPaths.back(), 10));
    }
    ASSERT_EQ(::chmod(locked.c_str(), 0555), 0);
    // Granting gives the folder back the rights an administrator has.
    auto runner = std::make_shared<FakePrivilegedRunner>(answer, [&] { ::chmod(locked.c_str(), 0755); });
    auto service = fixture.service(runner);
    CleanResult result;
    {
      OrdinaryRights ordinary;
      result = fixture.clean(service, items);
    }

    ASSERT_EQ(runner->prompts(), 1U); // ten refused items, one prompt
    const auto& arguments = runner->helperCalls().front();
    ASSERT_EQ(arguments.size(), 21U);
    EXPECT_EQ(arguments.front(), "remove");
    for (std::size_t i = 0; i < lockedPaths.size(); ++i) EXPECT_EQ(arguments[2 + 2 * i], lockedPaths[i]);
    EXPECT_FALSE(existsNoFollow(items.front().path));
    if (answer == FakePrivilegedRunner::Answer::grant) {
      EXPECT_EQ(result.freedBytes, 1100);
      EXPECT_EQ(result.itemsCleaned, 11);
      EXPECT_TRUE(result.failedItems.empty());
      for (const auto& path : lockedPaths) EXPECT_FALSE(existsNoFollow(path)) << path;
      EXPECT_EQ(fixture.statuses.end()[-2], "Requesting admin access for system files...");
    } else {
      EXPECT_EQ(result.freedBytes, 1000);
      EXPECT_EQ(result.itemsCleaned, 1);
      ASSERT_EQ(result.failedItems.size(), lockedPaths.size());
      EXPECT_EQ(result.failedItems.front().path, lockedPaths.front());
      EXPECT_EQ(result.failedItems.front().error, "administrator access was not granted");
      for (const auto& path : lockedPaths) EXPECT_TRUE(existsNoFollow(path)) << path;
      EXPECT_EQ(readFile(lockedPaths.front()), "xxx");
      EXPECT_THAT(std::vector<std::string>(fixture.statuses.end() - 3, fixture.statuses.end()),
                  ElementsAre("Requesting admin access for system files...",
                              "Admin access was not granted — skipped system files", "Cleanup complete"));
    }
  }
}

TEST(CleanExecution, OnlyWhatTheHelperReportsRemovedCounts) {
  Fixture fixture;
  const auto& dir = fixture.dir;
  const auto locked = dir.mkdir("root/var/log/locked");
  const auto stays = dir.file("root/var/log/locked/stays.log", 3);
  const auto vanishes = dir.file("root/var/log/locked/vanishes.log", 3);
  ASSERT_EQ(::chmod(locked.c_str(), 0555), 0);
  auto service = fixture.service(std::make_shared<SilentGrant>());
  CleanResult result;
  {
    OrdinaryRights ordinary;
    // Gone by the end, though no helper reported removing it: that is not this clean's doing.
    result = service.clean({item(stays, 50), item(vanishes, 70)}, [&](const std::string& text) {
      if (text == "Requesting admin access for system files...") {
        ::chmod(locked.c_str(), 0755);
        ::unlink(vanishes.c_str());
      }
    });
  }
  EXPECT_EQ(result.freedBytes, 0);
  EXPECT_EQ(result.itemsCleaned, 0);
  ASSERT_EQ(result.failedItems.size(), 2U);
  EXPECT_EQ(result.failedItems[0].error, "the privileged helper gave no answer for it");
  EXPECT_EQ(readFile(stays), "xxx");
  // The text of a refused prompt is for a refused prompt only.
  EXPECT_EQ(std::count(fixture.statuses.begin(), fixture.statuses.end(),
                       "Admin access was not granted — skipped system files"), 0);
}

TEST(CleanExecution, AFolderSwappedForALinkWhileThePromptIsOpenLeavesTheTargetIntact) {
  Fixture fixture;
  const auto& dir = fixture.dir;
  const auto precious = fixture.precious();
  const auto before = treeSnapshot(precious);
  const auto locked = dir.mkdir("root/Library/Caches/locked");
  const auto cache = dir.file("root/Library/Caches/locked/app/cache.db", 10).substr(0, (dir / "root/Library/Caches/locked/app").size());
  const auto file = dir.file("root/Library/Caches/locked/old.log", 10);
  ASSERT_EQ(::chmod(locked.c_str(), 0555), 0);
  auto runner = std::make_shared<FakePrivilegedRunner>(FakePrivilegedRunner::Answer::grant);
  // While the prompt is open, a process of the user swaps the refused folder, and then the
  // folder on the way to the refused file, for links to the precious folder.
  runner->beforeHelper = [&] {
    ::chmod(locked.c_str(), 0755);
    ASSERT_EQ(::rename(cache.c_str(), (dir / "moved-app").c_str()), 0);
    ASSERT_EQ(::symlink(precious.c_str(), cache.c_str()), 0);
    ASSERT_EQ(::rename(locked.c_str(), (dir / "moved-locked").c_str()), 0);
    ASSERT_EQ(::symlink(precious.c_str(), locked.c_str()), 0);
  };
  auto service = fixture.service(runner);
  CleanResult result;
  {
    OrdinaryRights ordinary;
    result = fixture.clean(service, {item(cache, 10), item(file, 10)});
  }
  EXPECT_EQ(runner->prompts(), 1U);
  EXPECT_EQ(result.itemsCleaned, 0);
  ASSERT_EQ(result.failedItems.size(), 2U);
  EXPECT_EQ(result.failedItems[0].error, "a folder on its path is a link or has been replaced");
  EXPECT_EQ(treeSnapshot(precious), before);
  EXPECT_TRUE(existsNoFollow(dir / "moved-locked/old.log"));
}

TEST(CleanExecution, AnItemListedTwiceIsRemovedOnceAndOneAlreadyGoneIsNoFailure) {
  Fixture fixture;
  const auto& dir = fixture.dir;
  const auto twice = dir.file("home/Library/Caches/app/data", 5).substr(0, (dir / "home/Library/Caches/app").size());
  auto runner = std::make_shared<FakePrivilegedRunner>(FakePrivilegedRunner::Answer::grant);
  auto service = fixture.service(runner);
  const CleanResult result =
      fixture.clean(service, {item(twice, 40), item(dir / "home/Library/Caches/never-there", 7), item(twice, 40)});
  EXPECT_EQ(result.itemsCleaned, 1);
  EXPECT_EQ(result.freedBytes, 40);
  EXPECT_TRUE(result.failedItems.empty());
  EXPECT_EQ(runner->prompts(), 0U);
}

TEST(CleanExecution, HostileNamesAreRemovedExactlyDirectlyAndThroughThePrompt) {
  Fixture fixture;
  const auto& dir = fixture.dir;
  const auto locked = dir.mkdir("root/Library/Logs/locked");
  std::vector<CleanItem> items;
  for (const auto& name : kHostileNames) {
    items.push_back(item(dir.file("home/Library/Caches/" + name, 2), 2));
    items.push_back(item(dir.file("root/Library/Logs/locked/" + name, 2), 2));
    // Neighbours whose names start or end the same way stay.
    dir.file("home/Library/Caches/" + name + " keep", "keep");
    dir.file("root/Library/Logs/locked/" + name + " keep", "keep");
  }
  ASSERT_EQ(::chmod(locked.c_str(), 0555), 0);
  auto runner = std::make_shared<FakePrivilegedRunner>(FakePrivilegedRunner::Answer::grant,
                                                       [&] { ::chmod(locked.c_str(), 0755); });
  auto service = fixture.service(runner);
  CleanResult result;
  {
    OrdinaryRights ordinary;
    result = fixture.clean(service, items);
  }
  EXPECT_EQ(runner->prompts(), 1U);
  EXPECT_EQ(result.itemsCleaned, static_cast<int>(items.size()));
  for (const auto& cleaned : items) EXPECT_FALSE(existsNoFollow(cleaned.path)) << cleaned.path;
  for (const auto& name : kHostileNames) {
    EXPECT_EQ(readFile(dir / ("home/Library/Caches/" + name + " keep")), "keep") << name;
    EXPECT_EQ(readFile(dir / ("root/Library/Logs/locked/" + name + " keep")), "keep") << name;
  }
  EXPECT_FALSE(existsNoFollow("pwned")); // no substitution ran in the shell's folder
}

TEST(CleanExecution, LinksSwappedInAfterTheScanNeverLeadOutOfTheSelectionNorToThePrompt) {
  Fixture fixture;
  const auto& dir = fixture.dir;
  const auto precious = fixture.precious();
  // A selected folder replaced by a link to the precious folder after the scan.
  dir.file("home/Library/Caches/swapped/junk", 10);
  ASSERT_EQ(::rename((dir / "home/Library/Caches/swapped").c_str(), (dir / "elsewhere").c_str()), 0);
  const auto swapped = dir.symlink("home/Library/Caches/swapped", precious);
  // A link inside a selected folder pointing out of it.
  dir.file("home/Library/Caches/planted/junk", 10);
  dir.symlink("home/Library/Caches/planted/out", precious);
  // A folder on the way to an item replaced by a link after the scan.
  dir.file("home/Library/Logs/app/old.log", 10);
  ASSERT_EQ(::rename((dir / "home/Library/Logs").c_str(), (dir / "old-logs").c_str()), 0);
  dir.symlink("home/Library/Logs", precious);
  dir.file("precious/app/old.log", "precious log");
  const auto before = treeSnapshot(precious);

  auto runner = std::make_shared<FakePrivilegedRunner>(FakePrivilegedRunner::Answer::grant);
  auto service = fixture.service(runner);
  const CleanResult result = fixture.clean(
      service, {item(swapped, 10), item(dir / "home/Library/Caches/planted", 10), item(dir / "home/Library/Logs/app", 10)});
  EXPECT_EQ(result.itemsCleaned, 2);
  EXPECT_FALSE(existsNoFollow(swapped));
  EXPECT_FALSE(existsNoFollow(dir / "home/Library/Caches/planted"));
  EXPECT_EQ(treeSnapshot(precious), before);
  EXPECT_TRUE(runner->prompts() == 0); // a swapped path is a failure, never a case for the prompt
}

TEST(CleanExecution, NeverRemovesTheHomeTheSystemRootOrAFolderAboveThem) {
  Fixture fixture;
  const auto& dir = fixture.dir;
  auto runner = std::make_shared<FakePrivilegedRunner>(FakePrivilegedRunner::Answer::grant);
  auto service = fixture.service(runner);
  dir.file("home/Documents/thesis.txt", "precious");
  dir.file("root/etc/hosts", "precious");
  const auto before = treeSnapshot(dir.path());
  const CleanResult result =
      fixture.clean(service, {item(dir / "home", 1), item(dir / "root", 1), item(dir.path(), 1)});
  EXPECT_EQ(result.itemsCleaned, 0);
  EXPECT_EQ(treeSnapshot(dir.path()), before);
  EXPECT_TRUE(runner->prompts() == 0);
}

TEST(CleanExecution, AFolderMountedAmongTheCachesIsNeitherOfferedNorEmptied) {
  halcyra::testing::ScanFixture fixture;
  fixture.homeFile("Library/Caches/com.example.app/blob", 50);
  const auto mounted = fixture.homeDir("Library/Caches/com.example.mounted");
  const auto inner = fixture.homeDir("Library/Caches/com.example.app/mounted");
  const auto precious = fixture.dir.file("precious/letter.txt", "dear diary").substr(0, (fixture.dir / "precious").size());
  fixture.dir.file("precious/photos/one.jpg", 3000);
  const auto before = treeSnapshot(precious);
  const auto result = halcyra::testing::inPrivateMountNamespace([&] {
    if (!halcyra::testing::bindMount(precious, mounted) || !halcyra::testing::bindMount(precious, inner)) return 10;
    const auto categories = fixture.scan();
    const auto paths = halcyra::testing::itemPaths(categories, "User Caches", fixture.home + "/Library/Caches");
    if (paths != std::vector<std::string>{"com.example.app"}) return 11;
    const auto* caches = halcyra::testing::findCategory(categories, "User Caches");
    NativeCleanService service(fixture.platform());
    const CleanResult cleaned = service.clean(caches->items, {});
    // The folder that holds the mount is emptied around it and stays, with the reason.
    if (cleaned.itemsCleaned != 0 || cleaned.failedItems.size() != 1) return 12;
    if (existsNoFollow(fixture.home + "/Library/Caches/com.example.app/blob")) return 13;
    return 0;
  });
  if (!result) GTEST_SKIP() << "no private mount namespace on this machine (needs root)";
  EXPECT_EQ(*result, 0);
  EXPECT_EQ(treeSnapshot(precious), before);
}
