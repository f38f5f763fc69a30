#include <sys/stat.h>

#include "DuplicatesFixture.h"
#include "support/OrdinaryRights.h"

namespace halcyra::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using DeleteFilesTest = DuplicatesFixture;

class DeleteFilesRefusedTest : public DuplicatesFixture {
protected:
  DeleteFilesRefusedTest() : DuplicatesFixture(FakePrivilegedRunner::Answer::refuse) {}
};

TEST_F(DeleteFilesTest, RemovesEachFileAndCountsItsSize) {
  const auto a = dir.file("a", 100);
  const auto b = dir.file("sub/b", 250);
  const auto result = remove({a, b});
  EXPECT_EQ(result.filesDeleted, 2);
  EXPECT_EQ(result.freedBytes, 350);
  EXPECT_GE(result.duration, 0.0);
  EXPECT_FALSE(existsNoFollow(a));
  EXPECT_FALSE(existsNoFollow(b));
  EXPECT_THAT(runner->lines(), IsEmpty());
  EXPECT_THAT(texts, ElementsAre("Deleting file 1/2…"));
}

TEST_F(DeleteFilesTest, ProgressIsPostedForEveryTenthFile) {
  std::vector<std::string> paths;
  for (int i = 0; i < 11; ++i) paths.push_back(dir.file("f" + std::to_string(i), 1));
  EXPECT_EQ(remove(paths).filesDeleted, 11);
  EXPECT_THAT(texts, ElementsAre("Deleting file 1/11…", "Deleting file 11/11…"));

  remove({dir.file("one", 1)});
  EXPECT_THAT(texts, ElementsAre("Deleting file 1/1…"));
}

TEST_F(DeleteFilesTest, ALinkIsRemovedAsALinkAndItsTargetStays) {
  const auto target = dir.file("target", 10);
  const auto link = dir.symlink("link", target);
  EXPECT_EQ(remove({link}).filesDeleted, 1);
  EXPECT_FALSE(existsNoFollow(link));
  EXPECT_EQ(readFile(target).size(), 10u);
}

TEST_F(DeleteFilesTest, WhatStaysGoesToOnePrivilegedAttemptWithEveryPathQuoted) {
  const auto folder = dir.mkdir("read-only");
  const auto quoted = dir.file("read-only/it's a copy", 40);
  const auto plain = dir.file("read-only/plain", 60);
  const auto freed = dir.file("free", 5);
  const auto vanished = dir / "deleted by someone else";
  ::chmod(folder.c_str(), 0555);
  duplicates::DuplicateCleanResult result;
  {
    OrdinaryRights ordinary;
    result = remove({quoted, freed, plain, vanished});
  }
  ASSERT_EQ(runner->lines().size(), 1u);
  EXPECT_EQ(runner->lines()[0], "rm -f '" + folder + "/it'\\''s a copy' '" + folder + "/plain' '" + vanished + "'");
  // Gone through the privileged step: counted, but their sizes are not known.
  EXPECT_EQ(result.filesDeleted, 4);
  EXPECT_EQ(result.freedBytes, 5);
  EXPECT_FALSE(existsNoFollow(quoted));
  EXPECT_FALSE(existsNoFollow(plain));
}

TEST_F(DeleteFilesRefusedTest, ARefusedPromptCountsOnlyWhatIsGone) {
  const auto folder = dir.mkdir("read-only");
  const auto stays = dir.file("read-only/stays", 40);
  const auto vanished = dir / "vanished";
  ::chmod(folder.c_str(), 0555);
  OrdinaryRights ordinary;
  const auto result = remove({stays, vanished});
  EXPECT_EQ(runner->lines().size(), 1u);
  EXPECT_EQ(result.filesDeleted, 1);
  EXPECT_EQ(result.freedBytes, 0);
  EXPECT_TRUE(existsNoFollow(stays));
}

TEST_F(DeleteFilesTest, OnlyPlainAbsolutePathsAreEverTouched) {
  const auto kept = dir.file("kept", 10);
  const auto folder = dir.mkdir("folder");
  dir.file("folder/inside", 10);
  const auto climbing = dir.path() + "/folder/../kept";
  const auto result = remove({"kept", climbing, "", "-rf", folder});
  EXPECT_EQ(result.filesDeleted, 0);
  EXPECT_TRUE(existsNoFollow(kept));
  EXPECT_TRUE(existsNoFollow(folder + "/inside"));
  // A folder standing where a file was is handed to `rm -f`, which leaves folders alone.
  ASSERT_EQ(runner->lines().size(), 1u);
  EXPECT_EQ(runner->lines()[0], "rm -f '" + folder + "'");
}

} // namespace
} // namespace halcyra::testing
