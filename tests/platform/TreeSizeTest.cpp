#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>
#include <sys/socket.h>
#include <sys/un.h>

#include "platform/TreeSize.h"
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
  // Built with relative steps: the full path is far beyond PATH_MAX.
  int fd = ::open(dir.path().c_str(), O_RDONLY | O_DIRECTORY);
  for (int i = 0; i < 10000; ++i) {
    ASSERT_EQ(::mkdirat(fd, "d", 0755), 0);
    const int next = ::openat(fd, "d", O_RDONLY | O_DIRECTORY);
    ::close(fd);
    fd = next;
    if (i % 1000 == 999) {
      const int file = ::openat(fd, "f", O_WRONLY | O_CREAT, 0644);
      ASSERT_EQ(::write(file, "12345", 5), 5);
      ::close(file);
    }
  }
  ::close(fd);
  EXPECT_EQ(logicalTreeSize(dir / "d"), 50);
  // Leave no unremovable tree behind: take it down from the bottom with relative steps.
  std::string chain;
  fd = ::open(dir.path().c_str(), O_RDONLY | O_DIRECTORY);
  std::vector<int> fds{fd};
  for (int i = 0; i < 10000; ++i) fds.push_back(::openat(fds.back(), "d", O_RDONLY | O_DIRECTORY));
  for (int i = 10000; i > 0; --i) {
    ::unlinkat(fds[i], "f", 0);
    ::close(fds[i]);
    ::unlinkat(fds[i - 1], "d", AT_REMOVEDIR);
  }
  ::close(fds[0]);
}
