#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include "platform/PkexecPrivilegedRunner.h"
#include "platform/PrivilegedHelper.h"
#include "platform/ProcessRunner.h"
#include "support/TempDir.h"
#include "support/TreeSnapshot.h"

using namespace halcyra::platform;
using halcyra::testing::existsNoFollow;
using halcyra::testing::readFile;
using halcyra::testing::TempDir;
using halcyra::testing::treeSnapshot;

namespace {

/// The real pkexec runner over a stand-in pkexec that runs the helper as the test user. While
/// the "prompt" is open it runs the file `hook` when there is one: a process of the user
/// racing the administrator.
struct HelperFixture {
  TempDir dir;
  std::string hook = dir / "hook";
  std::string pkexec = dir.script("pkexec", "[ -x '" + hook + "' ] && '" + hook + "'\nexec \"$@\"");

  PkexecPrivilegedRunner runner(const std::string& standIn = {}) const {
    return PkexecPrivilegedRunner(std::make_shared<SystemProcessRunner>(std::map<std::string, std::string>{
        {"/usr/bin/pkexec", standIn.empty() ? pkexec : standIn}}));
  }

  void whileThePromptIsOpen(const std::string& shellLines) const { dir.script("hook", shellLines); }

  std::string precious() const {
    dir.file("precious/letter.txt", "dear diary");
    dir.file("precious/photos/one.jpg", 3000);
    return dir / "precious";
  }
};

std::vector<PrivilegedItem> describe(const std::vector<std::string>& paths) {
  std::vector<PrivilegedItem> items;
  for (const auto& path : paths) {
    const auto item = describeForHelper(path);
    EXPECT_TRUE(item) << path;
    if (item) items.push_back(*item);
  }
  return items;
}

} // namespace

TEST(PrivilegedHelper, RemovesWhatItWasGivenAndReportsEachItemInOrder) {
  HelperFixture fixture;
  const auto& dir = fixture.dir;
  const auto file = dir.file("cache/it's \"a\" $(file)\n", 10);
  const auto folder = dir.file("cache/app/deep/data", 10).substr(0, (dir / "cache/app").size());
  const auto gone = dir.file("cache/gone", 1);
  const auto items = describe({file, folder, gone});
  ::unlink(gone.c_str());
  auto runner = fixture.runner();
  const HelperBatch batch = removeWithPrivileges(runner, items);
  ASSERT_TRUE(batch.granted);
  ASSERT_EQ(batch.reports.size(), 3U);
  EXPECT_EQ(batch.reports[0].outcome, HelperOutcome::removed);
  EXPECT_EQ(batch.reports[1].outcome, HelperOutcome::removed);
  EXPECT_EQ(batch.reports[2].outcome, HelperOutcome::gone);
  EXPECT_FALSE(existsNoFollow(file));
  EXPECT_FALSE(existsNoFollow(folder));
  EXPECT_TRUE(existsNoFollow(dir / "cache"));
}

TEST(PrivilegedHelper, ActsOnNothingThatChangedWhileThePromptWasOpen) {
  HelperFixture fixture;
  const auto& dir = fixture.dir;
  const auto precious = fixture.precious();
  dir.file("precious/app/data", "precious data");
  dir.file("precious/old.log", "precious log");
  const auto before = treeSnapshot(precious);
  const auto swappedItem = dir.file("cache/app/data", 10).substr(0, (dir / "cache/app").size());
  const auto swappedFolder = dir.file("logs/old.log", 10);
  const auto replacedFile = dir.file("other/file", 10);
  const auto untouched = dir.file("other/stays-removable", 10);
  const auto items = describe({swappedItem, swappedFolder, replacedFile, untouched});
  fixture.whileThePromptIsOpen("mv '" + swappedItem + "' '" + dir.path() + "/moved-app' && ln -s '" + precious +
                               "/app' '" + swappedItem + "'\n"
                               "mv '" + dir.path() + "/logs' '" + dir.path() + "/moved-logs' && ln -s '" + precious +
                               "' '" + dir.path() + "/logs'\n"
                               "echo new > '" + dir.path() + "/new' && mv '" + dir.path() + "/new' '" + replacedFile + "'\n");
  auto runner = fixture.runner();
  const HelperBatch batch = removeWithPrivileges(runner, items);
  ASSERT_TRUE(batch.granted);
  EXPECT_EQ(batch.reports[0].outcome, HelperOutcome::failed);
  EXPECT_EQ(batch.reports[0].reason, "was replaced since it was reviewed");
  EXPECT_EQ(batch.reports[1].outcome, HelperOutcome::failed);
  EXPECT_EQ(batch.reports[1].reason, "a folder on its path is a link or has been replaced");
  EXPECT_EQ(batch.reports[2].outcome, HelperOutcome::failed);
  EXPECT_EQ(batch.reports[3].outcome, HelperOutcome::removed); // one refusal never stops the others
  EXPECT_EQ(treeSnapshot(precious), before);
  EXPECT_EQ(readFile(replacedFile), "new\n");
  EXPECT_TRUE(existsNoFollow(dir / "moved-logs/old.log"));
}

TEST(PrivilegedHelper, RefusesPathsThatAreNotPlainOrNameATopLevelFolder) {
  HelperFixture fixture;
  const auto& dir = fixture.dir;
  const auto kept = dir.file("kept/file", 10);
  const auto identity = describeForHelper(kept)->identity;
  auto runner = fixture.runner();
  for (const std::string& path : {dir.path() + "/kept/../kept/file", std::string("kept/file"), dir.path() + "/kept/file/",
                                 std::string("/tmp"), std::string("/")}) {
    const HelperBatch batch = removeWithPrivileges(runner, {PrivilegedItem{path, identity}});
    ASSERT_TRUE(batch.granted) << path;
    EXPECT_EQ(batch.reports[0].outcome, HelperOutcome::failed) << path;
  }
  EXPECT_EQ(readFile(kept).size(), 10U);
}

TEST(PrivilegedHelper, ADeclinedPromptIsNotGrantedAndRunsNothing) {
  HelperFixture fixture;
  const auto file = fixture.dir.file("cache/file", 10);
  const auto items = describe({file});
  for (const auto& standIn : {fixture.dir.script("dismissed", "exit 126"), fixture.dir.script("unauthorised", "exit 127"),
                              fixture.dir / "no-such-pkexec"}) {
    auto runner = fixture.runner(standIn);
    const HelperBatch batch = removeWithPrivileges(runner, items);
    EXPECT_FALSE(batch.granted) << standIn;
    EXPECT_TRUE(batch.reports.empty());
  }
  EXPECT_TRUE(existsNoFollow(file));
}

TEST(PrivilegedHelper, ABatchTooLargeForOnePromptSendsWhatFitsAndFailsTheRestByName) {
  HelperFixture fixture;
  std::vector<PrivilegedItem> items;
  const std::string longName(200, 'n');
  for (int i = 0; i < 6000; ++i) {
    items.push_back({fixture.dir.path() + "/missing/" + longName + std::to_string(i), {{1, 2}, {3, 4}}});
  }
  auto runner = fixture.runner();
  const HelperBatch batch = removeWithPrivileges(runner, items);
  ASSERT_TRUE(batch.granted);
  ASSERT_EQ(batch.reports.size(), items.size());
  EXPECT_EQ(batch.reports.front().outcome, HelperOutcome::gone);
  EXPECT_EQ(batch.reports.back().outcome, HelperOutcome::failed);
  EXPECT_EQ(batch.reports.back().reason, "too many items for one administrator prompt; run the removal again");
}

TEST(PrivilegedHelper, ItsReportIsReadStrictly) {
  EXPECT_EQ(parseIdentityArgument(identityArgument({{1, 2}, {3, 18446744073709551615ULL}})),
            (ItemIdentity{{1, 2}, {3, 18446744073709551615ULL}}));
  for (const auto* bad : {"", "1:2:3", "1:2:3:4:5", "1:2:3:x", "-1:2:3:4", "1::3:4", "1:2:3:4 "}) {
    EXPECT_FALSE(parseIdentityArgument(bad)) << bad;
  }
  const auto reports = parseHelperOutput("0 removed\n"
                                         "2 failed permission denied\r\n"
                                         "0 failed a second word on item 0 is ignored\n"
                                         "9 removed\n"
                                         "x removed\n"
                                         "1 exploded\n"
                                         "3 gone",
                                         5);
  ASSERT_EQ(reports.size(), 5U);
  EXPECT_EQ(reports[0].outcome, HelperOutcome::removed);
  EXPECT_EQ(reports[1].outcome, HelperOutcome::failed);
  EXPECT_EQ(reports[1].reason, "the privileged helper gave no answer for it");
  EXPECT_EQ(reports[2].reason, "permission denied");
  EXPECT_EQ(reports[3].outcome, HelperOutcome::gone);
  EXPECT_EQ(reports[4].outcome, HelperOutcome::failed);
  EXPECT_EQ(reportLine(7, HelperOutcome::failed, "two\nlines"), "7 failed two lines\n");
}
