#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

#include "DuplicatesFixture.h"
#include "support/OrdinaryRights.h"
#include "support/PrivateMounts.h"

namespace halcyra::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Contains;
using ::testing::Not;

using DuplicateScanTest = DuplicatesFixture;

TEST_F(DuplicateScanTest, NothingToCompareStillPostsTheThreeTextsInOrder) {
  EXPECT_THAT(scan(), IsEmpty());
  EXPECT_THAT(texts, ElementsAre("Indexing files…", "Found 0 candidates in 0 size groups", "Found 0 duplicate groups"));

  dir.file("a", 4095);
  dir.file("b", 4095);
  EXPECT_THAT(scan(), IsEmpty());
  EXPECT_THAT(texts, ElementsAre("Indexing files…", "Found 0 candidates in 0 size groups", "Found 0 duplicate groups"));
}

TEST_F(DuplicateScanTest, IdenticalCopiesFormOneGroupOldestFirstWithNewerCopiesSelected) {
  const std::string content(5000, 'a');
  const auto middle = dir.file("x/photo copy.jpg", content);
  const auto oldest = dir.file("photo.jpg", content);
  const auto newest = dir.file("y/z/photo.jpg", content);
  dir.file("other.jpg", std::string(5000, 'b')); // same size, other content
  TempDir::setAge(oldest, 3000);
  TempDir::setAge(middle, 2000);
  TempDir::setAge(newest, 1000);

  const auto groups = scan();
  ASSERT_EQ(groups.size(), 1u);
  const auto& group = groups[0];
  ASSERT_EQ(group.files.size(), 3u);
  EXPECT_EQ(group.files[0].path, oldest);
  EXPECT_EQ(group.files[1].path, middle);
  EXPECT_EQ(group.files[2].path, newest);
  EXPECT_FALSE(group.files[0].isSelected);
  EXPECT_TRUE(group.files[1].isSelected);
  EXPECT_TRUE(group.files[2].isSelected);
  EXPECT_EQ(group.fileHash, "c526c6222044"); // SHA-256 of the content, first 12 hex digits
  EXPECT_EQ(group.representativeFileName, "photo.jpg");
  EXPECT_EQ(group.fileSize, 5000);
  for (const auto& file : group.files) EXPECT_EQ(file.size, 5000);
  EXPECT_EQ(group.selectedCount(), 2);
  EXPECT_EQ(group.totalWastedSize(), 10000);
  EXPECT_LT(group.files[0].modificationDate, group.files[1].modificationDate);

  std::set<std::string> ids{group.id};
  for (const auto& file : group.files) ids.insert(file.id);
  EXPECT_EQ(ids.size(), 4u);
  EXPECT_EQ(group.id.size(), 36u);
  EXPECT_THAT(texts, ElementsAre("Indexing files…", "Found 4 candidates in 1 size groups", "Found 1 duplicate groups"));
}

TEST_F(DuplicateScanTest, EqualDatesKeepTheOrderOfTheWalk) {
  const auto first = dir.file("a", std::string(4096, 'q'));
  const auto second = dir.file("sub/b", std::string(4096, 'q'));
  TempDir::setAge(first, 500);
  struct stat info {};
  ::stat(first.c_str(), &info);
  const timespec times[2] = {info.st_mtim, info.st_mtim};
  ::utimensat(AT_FDCWD, second.c_str(), times, 0);

  const auto groups = scan();
  ASSERT_EQ(groups.size(), 1u);
  // A folder's own files come before those of its sub-folders.
  EXPECT_EQ(groups[0].files[0].path, first);
  EXPECT_FALSE(groups[0].files[0].isSelected);
  EXPECT_TRUE(groups[0].files[1].isSelected);
}

TEST_F(DuplicateScanTest, HardLinksAreDuplicatesAndSymbolicLinksAreNeverIndexed) {
  const auto original = dir.file("original", std::string(6000, 'h'));
  const auto link = dir / "hardlink";
  ASSERT_EQ(::link(original.c_str(), link.c_str()), 0);
  dir.symlink("symlink", original);
  // A folder reached through a link is not entered, so nothing is listed twice.
  dir.file("real/copy", std::string(7000, 'r'));
  dir.file("other/copy", std::string(7000, 'r'));
  dir.symlink("alias", dir / "real");

  EXPECT_EQ(pathSets(scan()), (std::set<std::set<std::string>>{{original, link}, {dir / "real/copy", dir / "other/copy"}}));
}

TEST_F(DuplicateScanTest, MinimumSizeIsInclusive) {
  const auto a = dir.file("a", std::string(4096, 'm'));
  const auto b = dir.file("b", std::string(4096, 'm'));
  dir.file("c", std::string(4095, 'm'));
  dir.file("d", std::string(4095, 'm'));
  EXPECT_EQ(pathSets(scan(4096)), (std::set<std::set<std::string>>{{a, b}}));
}

TEST_F(DuplicateScanTest, ExcludedNamesHiddenEntriesAndPackagesAreNeverIndexed) {
  const std::string content(4200, 'e');
  const auto kept = dir.file("keep/original", content);
  const auto lowerCaseBuild = dir.file("project/build/copy", content);
  for (const char* hidden : {"node_modules/copy", "deep/.git/objects/copy", "Build/copy", "app/DerivedData/copy",
                             ".Trash/copy", "x/.build/copy", ".hidden", "y/.cache/copy", "Tool.app/Contents/copy",
                             "Shots.photoslibrary/originals/copy", "files/Build"}) {
    dir.file(hidden, content);
  }
  EXPECT_EQ(pathSets(scan()), (std::set<std::set<std::string>>{{kept, lowerCaseBuild}}));
  EXPECT_THAT(texts, Contains("Found 2 candidates in 1 size groups"));
}

TEST_F(DuplicateScanTest, SpecialFilesAreNeverOpened) {
  const auto a = dir.file("a", std::string(4096, 's'));
  const auto b = dir.file("b", std::string(4096, 's'));
  ASSERT_EQ(::mkfifo((dir / "fifo").c_str(), 0644), 0); // no writer: opening it for reading would block
  EXPECT_EQ(pathSets(scan(0)), (std::set<std::set<std::string>>{{a, b}}));
}

TEST_F(DuplicateScanTest, GroupsAreOrderedByTheSpaceTheirSelectionFrees) {
  // 2 copies of 9000 bytes free 9000; 3 copies of 4096 free 8192; 2 of 20000 free 20000.
  for (const char* name : {"p1", "p2"}) dir.file(name, std::string(9000, 'p'));
  for (const char* name : {"q1", "q2", "q3"}) dir.file(name, std::string(4096, 'q'));
  for (const char* name : {"r1", "r2"}) dir.file(name, std::string(20000, 'r'));
  const auto groups = scan();
  ASSERT_EQ(groups.size(), 3u);
  EXPECT_EQ(groups[0].totalWastedSize(), 20000);
  EXPECT_EQ(groups[1].totalWastedSize(), 9000);
  EXPECT_EQ(groups[2].totalWastedSize(), 8192);
}

TEST_F(DuplicateScanTest, ProgressIsPostedEveryFiveHundredIndexedAndEveryFiftyHashedFiles) {
  for (int i = 0; i < 499; ++i) dir.file("f" + std::to_string(i), std::string(1, static_cast<char>('a' + i % 4)));
  scan(1);
  EXPECT_THAT(texts, Not(Contains("Indexed 500 files…")));

  dir.file("f499", "a");
  const auto groups = scan(1);
  EXPECT_EQ(groups.size(), 4u);
  std::vector<std::string> expected{"Indexing files…", "Indexed 500 files…", "Found 500 candidates in 1 size groups"};
  for (int hashed = 50; hashed <= 500; hashed += 50) expected.push_back("Hashing file " + std::to_string(hashed) + "/500…");
  expected.push_back("Found 4 duplicate groups");
  EXPECT_EQ(texts, expected);
}

TEST_F(DuplicateScanTest, HashingProgressCountsFilesRuledOutWithoutAFullRead) {
  // 120 files of one size whose first bytes all differ: none needs reading in full.
  for (int i = 0; i < 120; ++i) {
    std::string content(9000, 'z');
    content[0] = static_cast<char>(i);
    dir.file("f" + std::to_string(i), content);
  }
  EXPECT_THAT(scan(), IsEmpty());
  EXPECT_THAT(texts, ElementsAre("Indexing files…", "Found 120 candidates in 1 size groups", "Hashing file 50/120…",
                                 "Hashing file 100/120…", "Found 0 duplicate groups"));
}

TEST_F(DuplicateScanTest, AnErrorThrownByTheProgressCallbackEndsTheScanWithThatError) {
  for (int i = 0; i < 200; ++i) dir.file("f" + std::to_string(i), std::string(9000, static_cast<char>(i)));
  const auto scanning = [&] {
    service().scan(dir.path(), 4096, [](const std::string& text) {
      if (text.rfind("Hashing file 50/", 0) == 0) throw std::runtime_error("stop");
    });
  };
  EXPECT_THROW(scanning(), std::runtime_error);
}

TEST_F(DuplicateScanTest, AFolderThatCannotBeReadGivesNoGroupsAndNoError) {
  EXPECT_THAT(scan(4096, dir / "missing"), IsEmpty());
  EXPECT_THAT(texts, ElementsAre("Indexing files…"));

  const auto locked = dir.mkdir("locked");
  dir.file("locked/a", 5000);
  dir.file("locked/b", 5000);
  ::chmod(locked.c_str(), 0);
  OrdinaryRights ordinary;
  EXPECT_THAT(scan(4096, locked), IsEmpty());
  EXPECT_THAT(texts, ElementsAre("Indexing files…"));
}

TEST_F(DuplicateScanTest, UnreadableFilesAreLeftOutButStillCounted) {
  const auto a = dir.file("a", std::string(5000, 'u'));
  const auto b = dir.file("b", std::string(5000, 'u'));
  const auto locked = dir.file("c", std::string(5000, 'u'));
  ::chmod(locked.c_str(), 0);
  OrdinaryRights ordinary;
  const int probe = ::open(locked.c_str(), O_RDONLY);
  if (probe >= 0) {
    ::close(probe);
    GTEST_SKIP() << "file permissions are not enforced here";
  }
  EXPECT_EQ(pathSets(scan()), (std::set<std::set<std::string>>{{a, b}}));
  EXPECT_THAT(texts, Contains("Found 3 candidates in 1 size groups"));
}

// Changes made between the walk and the reads: the hook is the status text posted between them.
TEST_F(DuplicateScanTest, FilesChangedAfterIndexingAreTakenAsTheyNowAre) {
  const std::string same(10000, 'c');
  std::string other = same;
  other[5000] = 'X'; // differs in the middle only
  const auto a = dir.file("a", same);
  const auto b = dir.file("b", same);
  const auto becomesFifo = dir.file("c", same);
  const auto vanishes = dir.file("d", same);
  const auto becomesLink = dir.file("e", same);
  const auto becomesSame = dir.file("f", other);
  const auto becomesOther = dir.file("g", same);
  const auto grows = dir.file("h", same);

  texts.clear();
  const auto groups = service().scan(dir.path(), 4096, [&](const std::string& text) {
    texts.push_back(text);
    if (text.rfind("Found 8 candidates", 0) != 0) return;
    std::filesystem::remove(becomesFifo);
    ASSERT_EQ(::mkfifo(becomesFifo.c_str(), 0644), 0);
    std::filesystem::remove(vanishes);
    std::filesystem::remove(becomesLink);
    dir.symlink("e", a);
    dir.file("f", same);
    dir.file("g", other);
    dir.file("h", same + "more");
  });
  EXPECT_EQ(pathSets(groups), (std::set<std::set<std::string>>{{a, b, becomesSame}}));
  EXPECT_EQ(texts.back(), "Found 1 duplicate groups");
}

TEST_F(DuplicateScanTest, FilesBeyondFourGibibytesKeepTheirWholeSize) {
  // Sparse files: no data is written, and those that differ at the end are never read in full.
  constexpr off_t kBig = (off_t{1} << 32) + 5000;
  for (const char* name : {"big1", "big2"}) {
    const int fd = ::open((dir / name).c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    ASSERT_GE(fd, 0);
    ASSERT_EQ(::ftruncate(fd, kBig), 0);
    const char last = name[3];
    ASSERT_EQ(::pwrite(fd, &last, 1, kBig - 1), 1);
    ::close(fd);
  }
  dir.file("small", std::string(5000, '\0')); // the size the big ones would have if cut to 32 bits
  EXPECT_THAT(scan(), IsEmpty());
  EXPECT_THAT(texts, Contains("Found 2 candidates in 1 size groups"));
}

} // namespace
} // namespace halcyra::testing

namespace halcyra::testing {
namespace {

using MountedFolderScanTest = DuplicatesFixture;

TEST_F(MountedFolderScanTest, AFileSeenAgainThroughAMountIsNoCopyOfItself) {
  const auto only = dir.file("photos/only.jpg", 8192);
  const auto folderMount = dir.mkdir("again");
  const auto fileMount = dir.file("shown-again.jpg", 1);
  const auto result = inPrivateMountNamespace([&] {
    // The folder mounted again below the scan, and the file mounted over another file.
    if (!bindMount(dir / "photos", folderMount) || !bindMount(only, fileMount)) return 10;
    const auto groups = scan(4096);
    if (!groups.empty()) return 11;
    return 0;
  });
  if (!result) GTEST_SKIP() << "no private mount namespace on this machine (needs root)";
  EXPECT_EQ(*result, 0);
  EXPECT_EQ(readFile(only).size(), 8192u);
}

} // namespace
} // namespace halcyra::testing
