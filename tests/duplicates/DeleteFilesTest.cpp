#include <sys/stat.h>

#include <atomic>
#include <thread>

#include "DuplicatesFixture.h"
#include "support/OrdinaryRights.h"
#include "support/TreeSnapshot.h"

namespace halcyra::testing {
namespace {

using duplicates::DuplicateFile;
using duplicates::DuplicateGroup;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

using DeleteFilesTest = DuplicatesFixture;

class DeleteFilesRefusedTest : public DuplicatesFixture {
protected:
  DeleteFilesRefusedTest() : DuplicatesFixture(FakePrivilegedRunner::Answer::refuse) {}
};

std::vector<std::string> failedPaths(const duplicates::DuplicateCleanResult& result) {
  std::vector<std::string> paths;
  for (const auto& failure : result.failedFiles) paths.push_back(failure.path);
  return paths;
}

TEST_F(DeleteFilesTest, RemovesEachMarkedCopyAndCountsItsSize) {
  const auto keep = dir.file("keep", 100);
  const auto a = dir.file("a", 100);
  const auto b = dir.file("sub/b", 100);
  const auto result = remove({groupOf({keep}, {a, b})});
  EXPECT_EQ(result.filesDeleted, 2);
  EXPECT_EQ(result.freedBytes, 200);
  EXPECT_GE(result.duration, 0.0);
  EXPECT_THAT(result.failedFiles, IsEmpty());
  EXPECT_FALSE(existsNoFollow(a));
  EXPECT_FALSE(existsNoFollow(b));
  EXPECT_TRUE(existsNoFollow(keep));
  EXPECT_EQ(runner->prompts(), 0u);
  EXPECT_THAT(texts, ElementsAre("Deleting file 1/2…"));
}

TEST_F(DeleteFilesTest, ProgressIsPostedForEveryTenthFile) {
  std::vector<std::string> paths;
  for (int i = 0; i < 11; ++i) paths.push_back(dir.file("f" + std::to_string(i), 1));
  EXPECT_EQ(remove({groupOf({dir.file("keep", 1)}, paths)}).filesDeleted, 11);
  EXPECT_THAT(texts, ElementsAre("Deleting file 1/11…", "Deleting file 11/11…"));
}

TEST_F(DeleteFilesTest, TheKeptCopyIsCheckedRightBeforeEachRemoval) {
  const auto keep = dir.file("keep", 10);
  std::vector<std::string> copies;
  for (int i = 0; i < 11; ++i) copies.push_back(dir.file("copy" + std::to_string(i), 10));
  const auto group = groupOf({keep}, copies);
  // The kept copy changes (its attributes) between the tenth removal and the eleventh.
  texts.clear();
  const auto result = service().deleteFiles({group}, [&](const std::string& text) {
    if (text == "Deleting file 11/11…") ::chmod(keep.c_str(), 0600);
  });
  EXPECT_EQ(result.filesDeleted, 10);
  EXPECT_THAT(failedPaths(result), ElementsAre(copies.back()));
  EXPECT_EQ(result.failedFiles.front().error, "the copy kept of it changed since the scan");
  EXPECT_TRUE(existsNoFollow(copies.back()));
}

TEST_F(DeleteFilesTest, ChangedOrOddCopiesStayAndSayWhy) {
  const auto keep = dir.file("keep", 10);
  const auto grown = dir.file("grown", 10);
  const auto target = dir.file("target", 10);
  const auto link = dir.symlink("link", target);
  const auto folder = dir.mkdir("folder");
  dir.file("folder/inside", 10);
  auto group = groupOf({keep}, {grown, target});
  // A link and a folder where the scan saw files, and paths that are not plain.
  for (const auto& path : {link, folder, dir.path() + "/folder/../keep", std::string("keep")}) {
    DuplicateFile odd = group.files.back();
    odd.path = path;
    group.files.push_back(odd);
  }
  group.files[2].isSelected = false; // target is kept too
  std::ofstream(grown, std::ios::app) << "more";
  const auto result = remove({group});
  EXPECT_EQ(result.filesDeleted, 0);
  EXPECT_THAT(failedPaths(result), ElementsAre(grown, link, folder, dir.path() + "/folder/../keep", "keep"));
  EXPECT_EQ(result.failedFiles[0].error, "changed since the scan");
  EXPECT_EQ(result.failedFiles[3].error, "is not a plain absolute path");
  EXPECT_TRUE(existsNoFollow(link));
  EXPECT_EQ(readFile(target).size(), 10u);
  EXPECT_TRUE(existsNoFollow(folder + "/inside"));
  EXPECT_EQ(runner->prompts(), 0u);
}

TEST_F(DeleteFilesTest, NoGroupLosesItsLastName) {
  const auto real = dir.file("real/a", 10);
  dir.symlink("alias", dir / "real");
  // One file seen under two paths is no copy of itself...
  const auto twice = remove({groupOf({real}, {dir / "alias/a"})});
  EXPECT_EQ(twice.filesDeleted, 0);
  ASSERT_EQ(twice.failedFiles.size(), 1u);
  EXPECT_EQ(twice.failedFiles[0].error, "the copy kept of it is this very file, seen under two paths");
  EXPECT_EQ(readFile(real).size(), 10u);

  // ...nor is a group whose copies are all marked...
  const auto other = dir.file("other", 10);
  auto all = groupOf({}, {real, other});
  EXPECT_EQ(remove({all}).filesDeleted, 0);
  EXPECT_TRUE(existsNoFollow(real));
  EXPECT_TRUE(existsNoFollow(other));

  // ...but another name of a file with several names is: deleting it loses nothing.
  const auto second = dir / "second-name";
  ASSERT_EQ(::link(real.c_str(), second.c_str()), 0);
  EXPECT_EQ(remove({groupOf({real}, {second})}).filesDeleted, 1);
  EXPECT_EQ(readFile(real).size(), 10u);
}

TEST_F(DeleteFilesTest, WhatIsRefusedGoesToOnePromptOfTheHelperAndVanishedCopiesToNone) {
  const auto folder = dir.mkdir("read-only");
  const auto keep = dir.file("keep", 5);
  const auto quoted = dir.file("read-only/it's a \"copy\"\n", 5);
  const auto plain = dir.file("read-only/plain", 5);
  const auto freed = dir.file("free", 5);
  const auto vanished = dir.file("deleted by someone else", 5);
  const auto group = groupOf({keep}, {quoted, freed, plain, vanished});
  ::unlink(vanished.c_str());
  ::chmod(folder.c_str(), 0555);
  duplicates::DuplicateCleanResult result;
  {
    OrdinaryRights ordinary;
    result = remove({group});
  }
  ASSERT_EQ(runner->prompts(), 1u);
  const auto& arguments = runner->helperCalls()[0];
  ASSERT_EQ(arguments.size(), 5u);
  EXPECT_EQ(arguments[0], "remove");
  EXPECT_EQ(arguments[2], quoted);
  EXPECT_EQ(arguments[4], plain);
  // Removed by the helper: counted, but their sizes do not add to what was freed.
  EXPECT_EQ(result.filesDeleted, 3);
  EXPECT_EQ(result.freedBytes, 5);
  EXPECT_THAT(result.failedFiles, IsEmpty());
  EXPECT_FALSE(existsNoFollow(quoted));
  EXPECT_FALSE(existsNoFollow(plain));
  EXPECT_TRUE(existsNoFollow(keep));
}

TEST_F(DeleteFilesRefusedTest, ARefusedPromptCountsNothingItDidNotDo) {
  const auto folder = dir.mkdir("read-only");
  const auto keep = dir.file("keep", 40);
  const auto stays = dir.file("read-only/stays", 40);
  ::chmod(folder.c_str(), 0555);
  OrdinaryRights ordinary;
  const auto result = remove({groupOf({keep}, {stays})});
  EXPECT_EQ(runner->prompts(), 1u);
  EXPECT_EQ(result.filesDeleted, 0);
  ASSERT_EQ(result.failedFiles.size(), 1u);
  EXPECT_EQ(result.failedFiles[0].error, "administrator access was not granted");
  EXPECT_TRUE(existsNoFollow(stays));
}

TEST_F(DeleteFilesTest, TwoRunsWithOppositeChoicesNeverDeleteBothCopies) {
  for (int round = 0; round < 20; ++round) {
    const auto a = dir.file("round" + std::to_string(round) + "/a", 64);
    const auto b = dir.file("round" + std::to_string(round) + "/b", 64);
    const auto keepA = groupOf({a}, {b});
    const auto keepB = groupOf({b}, {a});
    std::atomic<int> ready = 0;
    const auto run = [&](const DuplicateGroup& group) {
      ++ready;
      while (ready < 2) std::this_thread::yield();
      service().deleteFiles({group}, {});
    };
    std::thread first(run, keepA);
    std::thread second(run, keepB);
    first.join();
    second.join();
    EXPECT_NE(existsNoFollow(a), existsNoFollow(b)) << "round " << round;
  }
}

} // namespace
} // namespace halcyra::testing
