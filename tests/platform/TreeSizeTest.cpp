#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>
#include <sys/socket.h>
#include <sys/un.h>

#include "platform/TreeSize.h"
#include "support/DeepChain.h"
#include "support/TempDir.h"

using namespace halcyra::platform;
using halcyra::testing::TempDir;

TEST(TreeSize, AddsRegularFilesAndLeavesHiddenLinksAndSpecialFilesOut) {
  TempDir dir;
  dir.file("cache/a.bin", 100);
  dir.file("cache/sub/b.bin", 20);
  dir.file("cache/.hidden", 1000);
  dir.file("cache/.git/objects/x", 1000);
  dir.file("outside/big", 50000);
  dir.symlink("cache/link-to-outside", dir / "outside");
  dir.symlink("cache/loop", dir / "cache");
  ASSERT_EQ(::mkfifo((dir / "cache/fifo").c_str(), 0600), 0); // opening it would block
  EXPECT_EQ(logicalTreeSize(dir / "cache"), 120);
  EXPECT_EQ(logicalTreeSize(dir / "cache", {.skipHidden = false}), 2120);
  EXPECT_EQ(logicalTreeSize(dir / "cache/a.bin"), 100);
  EXPECT_EQ(logicalTreeSize(dir / "cache/link-to-outside"), 0);
  EXPECT_EQ(logicalTreeSize(dir / "missing"), 0);
}

TEST(TreeSize, MeasuresATreeTenThousandFoldersDeep) {
  TempDir dir;
  // The full path of the bottom is far beyond PATH_MAX.
  const halcyra::testing::DeepChain chain(dir.path(), 10000, "d", 1000, "12345");
  ASSERT_TRUE(chain.made());
  EXPECT_EQ(logicalTreeSize(dir.path()), 50);
}

TEST(TreeSizer, TwoWorkersGiveTheSameSizesAsOneWalk) {
  TempDir dir;
  // One wide, deep tree and a few small ones, so that sub-folders get handed between workers.
  std::int64_t expectedBig = 0;
  for (int a = 0; a < 12; ++a) {
    for (int b = 0; b < 12; ++b) {
      for (int c = 0; c < 4; ++c) {
        const auto size = static_cast<std::int64_t>(a * 100 + b * 10 + c + 1);
        dir.file("big/" + std::to_string(a) + "/" + std::to_string(b) + "/f" + std::to_string(c), size);
        expectedBig += size;
      }
    }
  }
  dir.file("big/3/.hidden/x", 5000);
  dir.file("small/a", 7);
  dir.file("file.bin", 11);
  dir.symlink("link", dir / "big");
  const std::vector<std::string> paths{dir / "big", dir / "small", dir / "file.bin", dir / "link", dir / "missing",
                                       dir / "big"};
  TreeSizer sizer(2);
  const auto sizes = sizer.sizes(paths);
  EXPECT_EQ(sizes, (std::vector<std::int64_t>{expectedBig, 7, 11, 0, 0, expectedBig}));
  for (std::size_t i = 0; i < paths.size(); ++i) EXPECT_EQ(sizes[i], logicalTreeSize(paths[i])) << paths[i];
}

TEST(TreeSizer, AFolderReachedAgainIsNotWalkedAgain) {
  TempDir dir;
  dir.file("caches/com.app/data/blob", 100);
  dir.file("caches/com.app/top", 10);
  dir.file("other/x", 1);
  TreeSizer sizer(2);
  EXPECT_EQ(sizer.size(dir / "caches/com.app/data"), 100);
  // Growth after the first measurement stays unseen for the rest of this sizer's scan: the
  // folder is remembered both as a path of its own and inside a larger tree.
  dir.file("caches/com.app/data/late", 5000);
  EXPECT_EQ(sizer.size(dir / "caches/com.app/data"), 100);
  EXPECT_EQ(sizer.size(dir / "caches"), 110);
  dir.file("caches/com.app/late", 5000);
  EXPECT_EQ(sizer.size(dir / "caches/com.app"), 110);
  // A sub-folder first seen inside a larger tree is remembered too.
  dir.file("other/sub/deeper/y", 3);
  EXPECT_EQ(sizer.size(dir / "other"), 4);
  dir.file("other/sub/deeper/z", 3000);
  EXPECT_EQ(sizer.size(dir / "other/sub/deeper"), 3);
  // A new scan sees everything.
  TreeSizer fresh(2);
  EXPECT_EQ(fresh.size(dir / "caches"), 10110);
}
