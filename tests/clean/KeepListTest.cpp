#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ScanFixture.h"
#include "clean/KeepList.h"
#include "clean/ScanCatalogue.h"

using namespace halcyra;
using namespace halcyra::testing;
using ::testing::Contains;
using ::testing::IsEmpty;
using ::testing::Not;

namespace {

constexpr std::int64_t kOld = 60 * kDay; // past every age limit of the rows and scanners

std::string resolved(const ScanFixture& fixture, const std::string& written) {
  return written.starts_with('/') ? fixture.root + written : fixture.home + "/" + written;
}

// Every item whose path is a kept path, lies below one or holds one, by plain text.
std::vector<std::string> itemsTouchingKeptPaths(const ScanFixture& fixture,
                                                const std::vector<clean::CleanCategory>& categories) {
  std::vector<std::string> touching;
  for (const auto& category : categories) {
    for (const auto& item : category.items) {
      for (const auto& kept : clean::keptPaths()) {
        const std::string path = resolved(fixture, kept.path);
        if (item.path == path || item.path.starts_with(path + "/") || path.starts_with(item.path + "/")) {
          touching.push_back(item.path);
        }
      }
    }
  }
  return touching;
}

std::vector<std::string> allItemPaths(const std::vector<clean::CleanCategory>& categories) {
  std::vector<std::string> paths;
  for (const auto& category : categories) {
    for (const auto& item : category.items) paths.push_back(item.path);
  }
  return paths;
}

} // namespace

// Each kept path is planted with an old file in it, beside junk the same rows do offer, with
// every program the conditional entries name running: nothing kept may come back.
TEST(ScanKeepList, CredentialsSettingsAndLiveDataAreNeverOffered) {
  ScanFixture fixture;
  fixture.grantFullDiskAccess();
  for (const auto& kept : clean::keptPaths()) {
    const std::string folder = resolved(fixture, kept.path);
    const std::string relative = folder.substr(fixture.dir.path().size() + 1);
    TempDir::setAge(fixture.dir.file(relative + "/com.gone.app", 4096), kOld);
    TempDir::setAge(folder, kOld);
    fixture.running.insert(kept.whileRunning.begin(), kept.whileRunning.end());
  }
  fixture.homeFile(".sbt/boot/scala-2.12.jar", 4096);
  fixture.homeFile(".cache/huggingface/hub/model.bin", 4096);
  fixture.homeFile("Library/Application Support/com.apple.wallpaper/aerials/a.mov", 4096);
  fixture.rootFile("private/var/db/powerlog/Other/old.log", 4096, kOld);
  TempDir::setAge(fixture.root + "/private/var/db/powerlog/Other", kOld);

  const auto categories = fixture.scan();
  EXPECT_THAT(itemsTouchingKeptPaths(fixture, categories), IsEmpty());
  const auto offered = allItemPaths(categories);
  EXPECT_THAT(offered, Contains(fixture.home + "/.sbt/boot"));
  EXPECT_THAT(offered, Contains(fixture.home + "/.cache/huggingface/hub"));
  EXPECT_THAT(offered, Contains(fixture.home + "/Library/Application Support/com.apple.wallpaper/aerials"));
  EXPECT_THAT(offered, Contains(fixture.root + "/private/var/db/powerlog/Other"));
}

TEST(ScanKeepList, RunningProgramsDataIsKeptOnlyWhileItRuns) {
  ScanFixture fixture;
  const std::string connection = fixture.homeFile(".jupyter/runtime/kernel-1.json", 4096);
  EXPECT_THAT(allItemPaths(fixture.scan()), Contains(connection));

  fixture.running = {"jupyter-lab"};
  EXPECT_THAT(allItemPaths(fixture.scan()), Not(Contains(connection)));
}

TEST(KeepList, MatchesWholeComponentsIgnoringCaseAndKeepsFoldersThatHoldAKeptPath) {
  const platform::SystemPaths paths("/Users/me", "/Volumes/Mac");
  const clean::KeepList list({{"Library/Autosave Information", "", {}},
                              {"/private/var/db/powerlog/Library/BatteryLife/Live.PLSQL", "", {}},
                              {".gradle/daemon", "", {"java"}}},
                             paths, {});
  EXPECT_TRUE(list.keeps("/Users/me/Library/Autosave Information"));
  EXPECT_TRUE(list.keeps("/Users/me/Library/autosave information/Untitled.rtf"));
  EXPECT_TRUE(list.keeps("/Volumes/Mac/private/var/db/powerlog/Library"));
  EXPECT_FALSE(list.keeps("/Volumes/Mac/private/var/db/powerlog/Other"));
  EXPECT_FALSE(list.keeps("/Users/me/Library/Autosave Information Old"));
  EXPECT_FALSE(list.keeps("/private/var/db/powerlog/Library")); // the running system's, not the scanned root's
  EXPECT_FALSE(list.keeps("/Users/me/.gradle/daemon/8.5")); // java is not running
}

TEST(ScanSystemRows, ALinuxSystemsOwnFoldersAreNeverOfferedAsAMacsSystemFolders) {
  ScanFixture fixture;
  fixture.grantFullDiskAccess();
  fixture.rootFile("var/log/syslog.1", 4096, kOld);
  fixture.rootFile("Library/Caches/com.vendor.daemon/cache", 4096);
  auto platform = fixture.platform();
  platform.macSystemLayout = false;
  std::vector<std::string> statuses;
  const auto categories = clean::NativeCleanService(platform).scan([&](const std::string& text) {
    statuses.push_back(text);
  });
  for (const auto& category : categories) EXPECT_NE(category.section, "System") << category.name;
  EXPECT_THAT(statuses, Not(Contains("Scanning System Logs...")));

  // The same tree given as a Mac's root keeps its system rows.
  EXPECT_THAT(itemPaths(fixture.scan(), "System Logs", fixture.root), ::testing::ElementsAre("var/log/syslog.1"));
}
