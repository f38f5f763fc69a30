// A shred asked to stop (SIGINT or SIGTERM in the command line) stops where nothing is left
// half done: after the file in hand, and in the fill after the chunk in hand, with every fill
// file removed.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <dirent.h>
#include <memory>

#include "platform/Platform.h"
#include "shredder/ShredderService.h"
#include "support/TempDir.h"

using namespace halcyra;
using halcyra::testing::existsNoFollow;
using halcyra::testing::readFile;
using halcyra::testing::TempDir;
using ::testing::IsEmpty;

namespace {

constexpr std::int64_t kMiB = 1'048'576;

struct StoppableShred {
  TempDir dir;
  std::shared_ptr<std::atomic<bool>> stop = std::make_shared<std::atomic<bool>>(false);

  shredder::ShredderService service() const {
    platform::Platform platform;
    platform.paths = platform::SystemPaths(dir.mkdir("home"), dir.mkdir("root"));
    platform.stopFlag = stop;
    return shredder::ShredderService(std::move(platform));
  }
};

std::vector<std::string> hiddenEntries(const std::string& folder) {
  std::vector<std::string> names;
  DIR* listing = ::opendir(folder.c_str());
  if (listing == nullptr) return names;
  while (const dirent* entry = ::readdir(listing)) {
    const std::string name = entry->d_name;
    if (name.starts_with('.') && name != "." && name != "..") names.push_back(name);
  }
  ::closedir(listing);
  return names;
}

} // namespace

TEST(InterruptedShred, StopsAfterTheFileInHandAndLeavesTheOthersWithTheirDataAndNoFill) {
  StoppableShred shred;
  const std::string first = shred.dir.file("files/first.bin", 64 * 1024);
  const std::string second = shred.dir.file("files/second.txt", "keep me whole");
  const auto service = shred.service();
  const auto files = service.resolveFiles({first, second});
  ASSERT_EQ(files.size(), 2U);

  std::vector<std::string> texts;
  const auto result = service.shredFiles(files, 1, [&](const std::string& text, double) {
    texts.push_back(text);
    if (text.starts_with("Pass 1/1: first")) shred.stop->store(true); // the signal arrives mid-file
  });

  EXPECT_EQ(result.filesShredded, 1);
  EXPECT_FALSE(existsNoFollow(first));
  EXPECT_EQ(readFile(second), "keep me whole");
  EXPECT_THAT(texts, ::testing::Not(::testing::Contains(::testing::StartsWith("Overwriting freed space"))));
  EXPECT_THAT(hiddenEntries(shred.dir / "files"), IsEmpty());
}

TEST(InterruptedShred, AStopDuringTheFillEndsItAfterOneChunkAndRemovesEveryFillFile) {
  StoppableShred shred;
  const std::string big = shred.dir.file("files/big.bin", 12 * kMiB); // three chunks of fill
  const auto service = shred.service();
  const auto files = service.resolveFiles({big});

  double lastFill = 0;
  const auto result = service.shredFiles(files, 1, [&](const std::string& text, double fraction) {
    if (!text.starts_with("Overwriting freed space")) return;
    lastFill = fraction;
    if (fraction > shredder::ShredderService::kFileStageShare) shred.stop->store(true); // after the first chunk
  });

  EXPECT_EQ(result.filesShredded, 1);
  EXPECT_LT(lastFill, shredder::ShredderService::kFileStageShare + shredder::ShredderService::kFillShare / 2);
  EXPECT_THAT(hiddenEntries(shred.dir / "files"), IsEmpty());
}
