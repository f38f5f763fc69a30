#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/PrivilegedHelper.h"
#include "support/OrdinaryRights.h"
#include "ShredderFixture.h"

namespace halcyra::shredder::testing {
namespace {

namespace fs = std::filesystem;
using halcyra::testing::existsNoFollow;
using halcyra::testing::readFile;

constexpr std::int64_t kMiB = 1'048'576;

std::vector<std::string> entries(const std::string& folder) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

using StagesTest = ShredderFixture;

TEST_F(StagesTest, EncryptionReplacesEveryBlockInThreeChunksWithoutAddingATag) {
  const std::string plain(static_cast<std::size_t>(5 * kMiB / 2), 'x');
  const auto path = tmp_.file("doc/a.bin", plain);

  const auto result = shred({path}, 1);

  ASSERT_EQ(result.filesShredded, 1);
  ASSERT_GE(layer_->writes.size(), 3u);
  // Three writes, in place and in order: two whole chunks and the half left over.
  EXPECT_EQ(layer_->writes[0].offset, 0);
  EXPECT_EQ(layer_->writes[0].length, static_cast<std::size_t>(kMiB));
  EXPECT_EQ(layer_->writes[1].offset, kMiB);
  EXPECT_EQ(layer_->writes[2].offset, 2 * kMiB);
  EXPECT_EQ(layer_->writes[2].length, static_cast<std::size_t>(kMiB / 2));

  const std::string& sealed = layer_->snapshots.at(0);
  ASSERT_EQ(sealed.size(), plain.size()); // no tag, no nonce appended
  EXPECT_EQ(equalBlocks(sealed, plain), 0u);
  // The plain text repeats, so chunks sealed under the same nonce would repeat too.
  const std::size_t half = static_cast<std::size_t>(kMiB / 2);
  const std::string first = sealed.substr(0, half);
  const std::string second = sealed.substr(static_cast<std::size_t>(kMiB), half);
  const std::string third = sealed.substr(static_cast<std::size_t>(2 * kMiB), half);
  EXPECT_EQ(equalBlocks(first, second), 0u);
  EXPECT_EQ(equalBlocks(second, third), 0u);
  EXPECT_EQ(equalBlocks(first, third), 0u);
}

TEST_F(StagesTest, PassesAlternateRandomAndZerosWithASyncAfterEachStageWhateverTheirNumber) {
  const auto path = tmp_.file("doc/a.bin", 3 * kMiB / 2);

  shred({path}, 3);

  // Encryption, three passes, then the truncation: five syncs, each after a whole stage.
  ASSERT_EQ(layer_->snapshots.size(), 5u);
  const auto& s = layer_->snapshots;
  for (std::size_t stage = 0; stage < 4; ++stage) ASSERT_EQ(s[stage].size(), static_cast<std::size_t>(3 * kMiB / 2));
  EXPECT_FALSE(allZero(s[1]));
  EXPECT_EQ(equalBlocks(s[1], s[0]), 0u);
  EXPECT_TRUE(allZero(s[2]));
  EXPECT_FALSE(allZero(s[3]));
  EXPECT_EQ(equalBlocks(s[3], s[1]), 0u);
  EXPECT_TRUE(s[4].empty());
  EXPECT_EQ(layer_->writes.size(), 8u); // two chunks per stage

  // One pass has no zero pass; seven end random.
  for (const std::size_t passes : {1u, 7u}) {
    layer_->snapshots.clear();
    shred({tmp_.file("p" + std::to_string(passes) + "/a.bin", 4096)}, static_cast<int>(passes));
    ASSERT_EQ(layer_->snapshots.size(), passes + 2);
    for (std::size_t pass = 1; pass <= passes; ++pass) {
      EXPECT_EQ(allZero(layer_->snapshots[pass]), pass % 2 == 0) << passes << " passes, pass " << pass;
    }
    EXPECT_TRUE(layer_->snapshots.back().empty());
  }
}

TEST_F(StagesTest, ShreddedFileAndFillFilesLeaveNothingBehind) {
  tmp_.file("doc/a.bin", 6 * kMiB);
  const auto keep = tmp_.file("doc/.keep", "stays");
  tmp_.file("doc/sub/b.txt", "bee");

  const auto result = shred({tmp_ / "doc"}, 1);

  EXPECT_EQ(result.filesShredded, 2);
  EXPECT_EQ(result.totalBytes, 6 * kMiB + 3);
  // The fill went into the first file's folder, as hidden files of 4 MiB and the rest.
  ASSERT_EQ(layer_->fillFiles.size(), 2u);
  EXPECT_EQ(layer_->fillFiles[0].bytes, static_cast<std::size_t>(4 * kMiB));
  EXPECT_EQ(layer_->fillFiles[1].bytes, static_cast<std::size_t>(2 * kMiB + 3));
  for (const auto& fill : layer_->fillFiles) {
    EXPECT_EQ(fs::path(fill.path).parent_path(), fs::path(tmp_ / "doc"));
    EXPECT_TRUE(fs::path(fill.path).filename().string().starts_with("."));
    EXPECT_TRUE(fill.path.ends_with(".tmp"));
  }
  // Folders and the hidden file stay; no renamed file and no fill file is left.
  EXPECT_EQ(entries(tmp_ / "doc"), (std::vector<std::string>{".keep", "sub"}));
  EXPECT_TRUE(entries(tmp_ / "doc/sub").empty());
  EXPECT_EQ(readFile(keep), "stays");
}

TEST_F(StagesTest, EmptyFileIsOnlyRenamedAndDeletedAndSkipsTheFill) {
  const auto path = tmp_.file("e/empty", "");

  const auto result = shred({path}, 3);

  EXPECT_EQ(result.filesShredded, 1);
  EXPECT_EQ(result.totalBytes, 0);
  EXPECT_FALSE(existsNoFollow(path));
  EXPECT_TRUE(entries(tmp_ / "e").empty());
  EXPECT_TRUE(layer_->writes.empty());
  EXPECT_TRUE(layer_->fillFiles.empty());
  EXPECT_EQ(reports_, (std::vector<std::pair<std::string, double>>{{"Shredding empty\u2026", 0.0}, {"Complete", 1.0}}));
}

TEST_F(StagesTest, FileAboveFourGibibytesIsCoveredWithoutGapsToTheLastByte) {
  // Sparse, and the double only pretends to read and write it: what is checked is the
  // arithmetic of offsets past 32 bits.
  const std::string path = tmp_ / "big.bin";
  const std::int64_t size = (std::int64_t{1} << 32) + kMiB + 5;
  {
    const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT, 0600);
    ASSERT_GE(fd, 0);
    ASSERT_EQ(::ftruncate(fd, size), 0);
    ::close(fd);
  }
  layer_->skipFileIo = true;
  layer_->snapshotOnSync = false;
  layer_->discardFillWrites = true;

  const auto result = shred({path}, 0);

  EXPECT_EQ(result.filesShredded, 1);
  EXPECT_EQ(result.totalBytes, size);
  std::int64_t next = 0;
  for (const auto& write : layer_->writes) {
    ASSERT_EQ(write.offset, next);
    next += static_cast<std::int64_t>(write.length);
  }
  EXPECT_EQ(next, size);
  EXPECT_EQ(layer_->writes.back().length, 5u);
  EXPECT_FALSE(existsNoFollow(path));
}

using FillTest = ShredderFixture;

TEST_F(FillTest, LargeRunsFillAtMostFiveHundredMebibytes) {
  const auto path = tmp_.file("a.bin", 10);
  layer_->discardFillWrites = true;
  auto engine = service();
  auto files = engine.resolveFiles({path});
  files.at(0).size = 10'000'000'000; // the listed size counts, not the one on disk

  const auto result = engine.shredFiles(files, 1, {});

  EXPECT_EQ(result.totalBytes, 10'000'000'000);
  ASSERT_EQ(layer_->fillFiles.size(), 125u);
  std::size_t total = 0;
  for (const auto& fill : layer_->fillFiles) total += fill.bytes;
  EXPECT_EQ(total, 524'288'000u);
  EXPECT_TRUE(entries(tmp_.path()).empty());
}

TEST_F(FillTest, FullDiskOrReadOnlyFolderEndsTheFillQuietly) {
  tmp_.file("a/x.bin", 9 * kMiB);
  layer_->failFillWrite = 1; // the second fill file meets a full disk
  const auto full = shred({tmp_ / "a/x.bin"}, 1);
  EXPECT_EQ(full.filesShredded, 1);
  EXPECT_EQ(layer_->fillFiles.size(), 2u);
  EXPECT_TRUE(entries(tmp_ / "a").empty());
  EXPECT_EQ(reports_.back(), (std::pair<std::string, double>{"Complete", 1.0}));
  EXPECT_LT(reports_[reports_.size() - 2].second, 1.0); // the fill ended early

  layer_->fillFiles.clear();
  layer_->failCreate = true;
  tmp_.file("b/y.bin", 100);
  const auto readOnly = shred({tmp_ / "b/y.bin"}, 1);
  EXPECT_EQ(readOnly.filesShredded, 1);
  EXPECT_TRUE(layer_->fillFiles.empty());
  EXPECT_TRUE(entries(tmp_ / "b").empty());
}

using ProgressTest = ShredderFixture;

TEST_F(ProgressTest, TextsAndFractionsFollowStagesChunksAndTheFill) {
  const auto path = tmp_.file("p/a.bin", 5 * kMiB / 2);

  shred({path}, 3);

  std::vector<Report> expected{{"Shredding a.bin\u2026", 0.0}};
  const double chunkDone[] = {0.4, 0.8, 1.0};
  for (int stage = 0; stage <= 3; ++stage) {
    const std::string text = stage == 0 ? "Encrypting: a.bin" : "Pass " + std::to_string(stage) + "/3: a.bin";
    for (const double done : chunkDone) expected.emplace_back(text, 0.8 * (stage + done) / 4);
  }
  expected.emplace_back("Overwriting freed space\u2026", 0.8);
  expected.emplace_back("Overwriting freed space\u2026", 1.0);
  expected.emplace_back("Complete", 1.0);

  ASSERT_EQ(reports_.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    EXPECT_EQ(reports_[i].first, expected[i].first) << i;
    EXPECT_NEAR(reports_[i].second, expected[i].second, 1e-12) << i;
  }
}

TEST_F(ProgressTest, EachFileStartsAtItsShareOfTheBar) {
  tmp_.file("q/a", 10);
  tmp_.file("q/b", "");
  tmp_.file("q/c", 10);

  shred({tmp_ / "q"}, 1);

  std::vector<Report> starts;
  for (const auto& report : reports_) {
    if (report.first.starts_with("Shredding ")) starts.push_back(report);
  }
  ASSERT_EQ(starts.size(), 3u);
  EXPECT_DOUBLE_EQ(starts[1].second, 0.8 / 3);
  EXPECT_DOUBLE_EQ(starts[2].second, 1.6 / 3);
  for (std::size_t i = 1; i < reports_.size(); ++i) EXPECT_GE(reports_[i].second, reports_[i - 1].second) << i;
}

using FallbackTest = ShredderFixture;

TEST_F(FallbackTest, FailedWriteAsksOnceAndARefusedPromptLeavesTheFile) {
  const auto broken = tmp_.file("f/a.bin", 3 * kMiB);
  const auto fine = tmp_.file("g/b.bin", 100);
  layer_->failFileWrite = 4; // in the first pass over the first file

  const auto result = shred({broken, fine}, 3);

  ASSERT_EQ(runner_->prompts(), 1u);
  const auto& call = runner_->helperCalls()[0];
  ASSERT_EQ(call.size(), 4u);
  EXPECT_EQ(call[0], "shred");
  EXPECT_EQ(call[1], "3");
  EXPECT_EQ(call[3], broken);
  EXPECT_TRUE(existsNoFollow(broken)); // as far as the stage got, but still there
  EXPECT_FALSE(existsNoFollow(fine));
  EXPECT_EQ(result.filesShredded, 1);
  EXPECT_EQ(result.totalBytes, 100);
  ASSERT_EQ(refused_.size(), 1u);
  EXPECT_EQ(refused_[0].path, broken);
  EXPECT_EQ(refused_[0].reason, "could not be overwritten, and administrator rights were not granted");
}

TEST_F(FallbackTest, UnopenableFileGoesToThePromptAndCountsWhenGone) {
  const auto locked = tmp_.file("h/locked.bin", 5000);
  ::chmod(locked.c_str(), 0000);
  useRunner(std::make_shared<FakePrivilegedRunner>(FakePrivilegedRunner::Answer::grant,
                                                   [&] { ::chmod(locked.c_str(), 0600); }));
  ShredResult result;
  {
    halcyra::testing::OrdinaryRights ordinary;
    result = shred({locked}, 1);
  }
  EXPECT_EQ(runner_->prompts(), 1u);
  EXPECT_FALSE(existsNoFollow(locked));
  EXPECT_EQ(result.filesShredded, 1);
  EXPECT_EQ(result.totalBytes, 5000);
}

TEST_F(FallbackTest, AnyCharacterInThePathReachesTheHelperAsOneWord) {
  const std::string pwned = tmp_ / "pwned";
  ::setenv("HALCYRA_SHRED_PWN", pwned.c_str(), 1);
  useRunner(std::make_shared<FakePrivilegedRunner>(FakePrivilegedRunner::Answer::grant));
  const std::vector<std::string> names{"a'b", "a\"b", "a\\b", "$(touch $HALCYRA_SHRED_PWN)",
                                       "`touch $HALCYRA_SHRED_PWN`", "l1\nl2", "-rf", " lead",
                                       "trail ", "*", "'\"'\"'", "x;y&z|w>v"};
  std::vector<std::string> paths;
  for (const auto& name : names) paths.push_back(tmp_.file("n/" + name, 64));
  const auto sentinel = tmp_.file("n/a", "sentinel");
  layer_->failFileWrite = 0; // the first write of the first file fails; the rest shred directly
  auto engine = service();
  const auto files = engine.resolveFiles(paths);
  ASSERT_EQ(files.size(), names.size());

  for (std::size_t i = 0; i < files.size(); ++i) {
    layer_->writes.clear();
    engine.shredFiles({files[i]}, 1, {});
    EXPECT_FALSE(existsNoFollow(files[i].path)) << names[i];
  }
  ASSERT_EQ(runner_->prompts(), names.size());
  for (std::size_t i = 0; i < names.size(); ++i) EXPECT_EQ(runner_->helperCalls()[i].back(), paths[i]);
  EXPECT_FALSE(existsNoFollow(pwned));
  EXPECT_EQ(readFile(sentinel), "sentinel");
  ::unsetenv("HALCYRA_SHRED_PWN");
}

TEST_F(FallbackTest, TheHelperRefusesLinksFilesWithOtherNamesAndSwappedFolders) {
  useRunner(std::make_shared<FakePrivilegedRunner>(FakePrivilegedRunner::Answer::grant));
  const auto target = tmp_.file("t/target", "keep me");
  const auto link = tmp_.symlink("t/link", target);
  const auto partner = tmp_.file("t/partner", "keep me too");
  const auto second = tmp_ / "t/second";
  ASSERT_EQ(::link(partner.c_str(), second.c_str()), 0);

  // The helper alone, as the prompt would run it with administrator rights.
  for (const auto& path : {link, second}) {
    const auto item = platform::describeForHelper(path);
    ASSERT_TRUE(item);
    const auto batch = platform::shredWithPrivileges(*runner_, *item, 1);
    ASSERT_TRUE(batch.granted);
    EXPECT_EQ(batch.reports[0].outcome, platform::HelperOutcome::failed) << path;
  }
  // A folder swapped for a link to another folder holding a file of the same name.
  const auto victim = tmp_.file("u/doc", "listed");
  const auto item = platform::describeForHelper(victim);
  ASSERT_TRUE(item);
  const auto precious = tmp_.file("precious/doc", "precious");
  ASSERT_EQ(::rename((tmp_ / "u").c_str(), (tmp_ / "u-moved").c_str()), 0);
  tmp_.symlink("u", tmp_ / "precious");
  const auto batch = platform::shredWithPrivileges(*runner_, *item, 1);
  ASSERT_TRUE(batch.granted);
  EXPECT_EQ(batch.reports[0].outcome, platform::HelperOutcome::failed);
  EXPECT_EQ(readFile(precious), "precious");

  EXPECT_EQ(readFile(target), "keep me");
  EXPECT_TRUE(existsNoFollow(link));
  EXPECT_EQ(readFile(partner), "keep me too");
  EXPECT_EQ(readFile(second), "keep me too");
}

using SwapTest = ShredderFixture;

TEST_F(SwapTest, FileReplacedAfterListingIsRefusedAndWhatReplacedItIsUntouched) {
  const auto kept = tmp_.file("keep/doc", "precious");
  const auto toLink = tmp_.file("s/link", 100);
  const auto toFifo = tmp_.file("s/fifo", 100);
  const auto toHardLink = tmp_.file("s/hard", 100);
  auto engine = service();
  const auto files = engine.resolveFiles({toLink, toFifo, toHardLink});
  ASSERT_EQ(files.size(), 3u);

  ASSERT_EQ(::unlink(toLink.c_str()), 0);
  tmp_.symlink("s/link", kept);
  ASSERT_EQ(::unlink(toFifo.c_str()), 0);
  ASSERT_EQ(::mkfifo(toFifo.c_str(), 0600), 0);
  const auto otherName = tmp_ / "keep/other";
  ASSERT_EQ(::link(toHardLink.c_str(), otherName.c_str()), 0);

  std::vector<ShredderRefusal> refused;
  const auto result = engine.shredFiles(files, 3, {}, &refused);

  EXPECT_EQ(result.filesShredded, 0);
  EXPECT_EQ(runner_->prompts(), 0u);
  ASSERT_EQ(refused.size(), 3u);
  EXPECT_NE(refused[0].reason.find("symbolic link"), std::string::npos);
  EXPECT_NE(refused[1].reason.find("FIFO"), std::string::npos);
  EXPECT_NE(refused[2].reason.find("1 other name"), std::string::npos);
  EXPECT_EQ(readFile(kept), "precious");
  EXPECT_EQ(readFile(otherName), std::string(100, 'x'));
  EXPECT_TRUE(existsNoFollow(toFifo));
  EXPECT_TRUE(layer_->writes.empty());
}

} // namespace
} // namespace halcyra::shredder::testing
