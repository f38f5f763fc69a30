#include <gtest/gtest.h>

#include <cstdio>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <sys/un.h>
#if defined(__linux__)
#include <sys/sysmacros.h> // makedev
#endif
#include <unistd.h>

#include "platform/SafeRemove.h"
#include "support/OrdinaryRights.h"
#include "support/TempDir.h"
#include "support/TreeSnapshot.h"

using namespace halcyra::platform;
using halcyra::testing::existsNoFollow;
using halcyra::testing::OrdinaryRights;
using halcyra::testing::readFile;
using halcyra::testing::TempDir;
using halcyra::testing::treeSnapshot;

namespace {

// A folder of things that must survive every removal next to it.
std::string makePrecious(const TempDir& dir) {
  dir.file("precious/letter.txt", "dear diary");
  dir.file("precious/photos/one.jpg", 3000);
  dir.file("precious/app/x/keep.txt", "keep");
  return dir / "precious";
}

void chmodOrFail(const std::string& path, mode_t mode) { ASSERT_EQ(::chmod(path.c_str(), mode), 0) << path; }

// A chain of `depth` folders named "d" below `top`, built with relative steps because the
// whole path is far longer than PATH_MAX.
void buildDeepChain(const std::string& top, int depth) {
  ASSERT_EQ(::mkdir(top.c_str(), 0755), 0);
  int fd = ::open(top.c_str(), O_RDONLY | O_DIRECTORY);
  ASSERT_GE(fd, 0);
  for (int i = 0; i < depth; ++i) {
    ASSERT_EQ(::mkdirat(fd, "d", 0755), 0);
    const int next = ::openat(fd, "d", O_RDONLY | O_DIRECTORY);
    ::close(fd);
    fd = next;
    ASSERT_GE(fd, 0);
    if (i % 1000 == 999) ::close(::openat(fd, "f", O_WRONLY | O_CREAT, 0644));
  }
  ::close(fd);
}

} // namespace

TEST(SafeRemove, RemovesFilesAndWholeFoldersAndTellsWhatWasAlreadyGone) {
  TempDir dir;
  const auto precious = makePrecious(dir);
  const auto before = treeSnapshot(precious);
  const auto file = dir.file("cache/one.bin", 100);
  dir.file("cache/app/.hidden/deep/x", 10);
  dir.file("cache/app/data", 10);
  dir.mkdir("cache/app/empty");
  dir.file("cache folder with spaces/y", 1);

  EXPECT_EQ(removeItem(file), RemoveOutcome::removed);
  EXPECT_FALSE(existsNoFollow(file));
  EXPECT_EQ(removeItem(dir / "cache/app"), RemoveOutcome::removed);
  EXPECT_FALSE(existsNoFollow(dir / "cache/app"));
  EXPECT_TRUE(existsNoFollow(dir / "cache")); // only the item goes, not its parent
  EXPECT_EQ(removeItem(dir / "cache folder with spaces"), RemoveOutcome::removed);
  EXPECT_EQ(removeItem(dir / "cache/app"), RemoveOutcome::alreadyGone);
  EXPECT_EQ(removeItem(dir / "missing/below/here"), RemoveOutcome::alreadyGone);
  EXPECT_EQ(treeSnapshot(precious), before);
}

TEST(SafeRemove, RefusesPathsThatAreNotPlainAbsolutePathsAndTouchesNothing) {
  TempDir dir;
  const auto precious = makePrecious(dir);
  const auto before = treeSnapshot(precious);
  dir.symlink("cache/link", precious);
  dir.file("cache/victim", "v");
  const std::string withNul = dir / std::string("cache/victim\0tail", 17);

  for (const std::string& path : {std::string(), std::string("relative/cache"), std::string("/"), std::string("//"),
                                  dir / "cache/link/", dir / "cache/link/letter.txt", dir / "cache/../precious",
                                  dir / "cache/./link", withNul}) {
    EXPECT_EQ(removeItem(path), RemoveOutcome::failed) << path;
    EXPECT_EQ(removeContents(path), RemoveOutcome::failed) << path;
  }
  EXPECT_EQ(treeSnapshot(precious), before);
  EXPECT_EQ(readFile(dir / "cache/victim"), "v");
  EXPECT_TRUE(existsNoFollow(dir / "cache/link"));

  EXPECT_TRUE(isPlainAbsolutePath("/a//b"));
  EXPECT_TRUE(isPlainAbsolutePath("/a/..b/.c/-rf"));
  EXPECT_FALSE(isPlainAbsolutePath("/a/b/"));
  EXPECT_FALSE(isPlainAbsolutePath("/a/b/.."));
}

TEST(SafeRemove, NeverFollowsSymbolicLinksAtAnyDepth) {
  TempDir dir;
  const auto precious = makePrecious(dir);
  const auto before = treeSnapshot(precious);
  // Links that are items themselves go as links.
  const auto toFolder = dir.symlink("cache/to-folder", precious);
  const auto toFile = dir.symlink("cache/to-file", precious + "/letter.txt");
  const auto dangling = dir.symlink("cache/dangling", dir / "nowhere");
  // Links inside a folder, pointing out of it, at each other and at themselves.
  dir.symlink("cache/tree/out", precious);
  dir.symlink("cache/tree/sub/up", "..");
  dir.symlink("cache/tree/sub/self", ".");
  dir.symlink("cache/tree/a", "b");
  dir.symlink("cache/tree/b", "a");
  dir.symlink("cache/tree/sub/photo", precious + "/photos/one.jpg");

  for (const auto& link : {toFolder, toFile, dangling}) {
    EXPECT_EQ(removeItem(link), RemoveOutcome::removed) << link;
    EXPECT_FALSE(existsNoFollow(link));
  }
  EXPECT_EQ(removeItem(dir / "cache/tree"), RemoveOutcome::removed);
  EXPECT_FALSE(existsNoFollow(dir / "cache/tree"));
  EXPECT_EQ(treeSnapshot(precious), before);
}

TEST(SafeRemove, CannotBeRedirectedByALinkSwappedInAfterTheScan) {
  TempDir dir;
  const auto precious = makePrecious(dir);
  const auto before = treeSnapshot(precious);

  // The selected folder itself is replaced by a link to the precious folder: the link goes.
  dir.file("cache/selected/junk", 10);
  ASSERT_EQ(::rename((dir / "cache/selected").c_str(), (dir / "moved-away").c_str()), 0);
  dir.symlink("cache/selected", precious);
  EXPECT_EQ(removeItem(dir / "cache/selected"), RemoveOutcome::removed);
  EXPECT_FALSE(existsNoFollow(dir / "cache/selected"));

  // A folder on the way is replaced by a link: "home/Library/Caches/app/x" now leads into the
  // precious folder, and nothing is removed through it.
  dir.file("home/Library/Caches/app/x/junk", 10);
  ASSERT_EQ(::rename((dir / "home/Library/Caches").c_str(), (dir / "old-caches").c_str()), 0);
  dir.symlink("home/Library/Caches", precious);
  EXPECT_EQ(removeItem(dir / "home/Library/Caches/app/x"), RemoveOutcome::failed);
  EXPECT_EQ(removeItem(dir / "home/Library/Caches/app/x/keep.txt"), RemoveOutcome::failed);
  EXPECT_EQ(removeContents(dir / "home/Library/Caches/app"), RemoveOutcome::failed);

  EXPECT_EQ(treeSnapshot(precious), before);
  EXPECT_TRUE(existsNoFollow(dir / "moved-away/junk"));
}

TEST(SafeRemove, UnlinksFifosSocketsAndDevicesWithoutOpeningThem) {
  TempDir dir;
  dir.mkdir("cache/special");
  // Opening a FIFO without a writer would block the removal for good.
  ASSERT_EQ(::mkfifo((dir / "cache/special/fifo").c_str(), 0600), 0);
  const int sock = ::socket(AF_UNIX, SOCK_STREAM, 0);
  ASSERT_GE(sock, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  const std::string socketPath = dir / "cache/special/socket";
  ASSERT_LT(socketPath.size(), sizeof(address.sun_path));
  std::snprintf(address.sun_path, sizeof(address.sun_path), "%s", socketPath.c_str());
  ASSERT_EQ(::bind(sock, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
  // A device node can only be made with the right to do so; without it the case is left out.
  ::mknod((dir / "cache/special/null").c_str(), S_IFCHR | 0600, makedev(1, 3));

  EXPECT_EQ(removeItem(dir / "cache/special"), RemoveOutcome::removed);
  EXPECT_FALSE(existsNoFollow(dir / "cache/special"));
  ::close(sock);

  ASSERT_EQ(::mkfifo((dir / "cache/lonely-fifo").c_str(), 0600), 0);
  EXPECT_EQ(removeItem(dir / "cache/lonely-fifo"), RemoveOutcome::removed);
}

TEST(SafeRemove, ReportsRefusalsForThePrivilegedBatchAndKeepsWhatWasRefused) {
  TempDir dir;
  dir.file("locked/report.log", "still here");
  dir.file("cache/app/free.bin", 10);
  dir.file("cache/app/sealed/inner.bin", "sealed");
  dir.file("cache/app/closed/inner.bin", "closed");
  dir.file("cache/app/zz-free-too/x", 1);
  chmodOrFail(dir / "locked", 0555);
  chmodOrFail(dir / "cache/app/sealed", 0555); // read-only: its entries cannot be unlinked
  chmodOrFail(dir / "cache/app/closed", 0);    // cannot even be listed
  {
    OrdinaryRights ordinary;
    EXPECT_EQ(removeItem(dir / "locked/report.log"), RemoveOutcome::permissionDenied);
    EXPECT_EQ(removeItem(dir / "cache/app"), RemoveOutcome::permissionDenied);
  }
  EXPECT_EQ(readFile(dir / "locked/report.log"), "still here");
  // Everything that could go went; what was refused is intact.
  EXPECT_FALSE(existsNoFollow(dir / "cache/app/free.bin"));
  EXPECT_FALSE(existsNoFollow(dir / "cache/app/zz-free-too"));
  EXPECT_EQ(readFile(dir / "cache/app/sealed/inner.bin"), "sealed");
  chmodOrFail(dir / "cache/app/closed", 0755);
  EXPECT_EQ(readFile(dir / "cache/app/closed/inner.bin"), "closed");

  chmodOrFail(dir / "cache/app/sealed", 0755);
  EXPECT_EQ(removeItem(dir / "cache/app"), RemoveOutcome::removed);
}

TEST(SafeRemove, RemovesATreeTenThousandFoldersDeepWithFewDescriptors) {
  TempDir dir;
  buildDeepChain(dir / "deep", 10000);
  rlimit saved{};
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &saved), 0);
  rlimit few = saved;
  few.rlim_cur = 32;
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &few), 0);
  const RemoveOutcome outcome = removeItem(dir / "deep");
  ::setrlimit(RLIMIT_NOFILE, &saved);
  EXPECT_EQ(outcome, RemoveOutcome::removed);
  EXPECT_FALSE(existsNoFollow(dir / "deep"));
}

TEST(SafeRemove, RemovesAFolderOfOneHundredThousandEntries) {
  TempDir dir;
  const auto wide = dir.mkdir("wide");
  const int fd = ::open(wide.c_str(), O_RDONLY | O_DIRECTORY);
  ASSERT_GE(fd, 0);
  for (int i = 0; i < 100000; ++i) {
    const std::string name = std::to_string(i);
    if (i % 10000 == 0) ASSERT_EQ(::mkdirat(fd, name.c_str(), 0755), 0);
    else ::close(::openat(fd, name.c_str(), O_WRONLY | O_CREAT, 0644));
  }
  ::close(fd);
  EXPECT_EQ(removeItem(wide), RemoveOutcome::removed);
  EXPECT_FALSE(existsNoFollow(wide));
}

TEST(SafeRemove, EmptiesAFolderAndLeavesTheFolderItself) {
  TempDir dir;
  const auto precious = makePrecious(dir);
  const auto before = treeSnapshot(precious);
  dir.file("bin/files/a", 1);
  dir.file("bin/files/b/c", 1);
  dir.symlink("bin/files/out", precious);
  dir.symlink("bin-link", dir / "bin/files");

  EXPECT_EQ(removeContents(dir / "bin/files"), RemoveOutcome::removed);
  EXPECT_TRUE(treeSnapshot(dir / "bin/files").empty());
  EXPECT_TRUE(existsNoFollow(dir / "bin/files"));
  EXPECT_EQ(removeContents(dir / "bin/missing"), RemoveOutcome::alreadyGone);
  EXPECT_EQ(removeContents(dir / "bin-link"), RemoveOutcome::failed); // a link is never emptied through
  EXPECT_EQ(removeContents(precious + "/letter.txt"), RemoveOutcome::failed);
  EXPECT_EQ(treeSnapshot(precious), before);
}

TEST(SafeRemove, IsGoneOnlyWhenNothingIsThere) {
  TempDir dir;
  const auto file = dir.file("f", 1);
  EXPECT_FALSE(isGone(file));
  EXPECT_FALSE(isGone(dir.symlink("dangling", dir / "nowhere"))); // the link itself is there
  EXPECT_TRUE(isGone(dir / "nowhere"));
  EXPECT_TRUE(isGone(file + "/below")); // a file on the way: nothing can be below it
  EXPECT_FALSE(isGone(std::string("") + dir.path() + std::string("\0x", 2)));
}
