#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include "platform/MountPoints.h"
#include "platform/SafeRemove.h"
#include "platform/TreeSize.h"
#include "support/PrivateMounts.h"
#include "support/TempDir.h"
#include "support/TreeSnapshot.h"

using namespace halcyra::platform;
using halcyra::testing::bindMount;
using halcyra::testing::existsNoFollow;
using halcyra::testing::inPrivateMountNamespace;
using halcyra::testing::TempDir;
using halcyra::testing::treeSnapshot;

namespace {

// A cache folder with a folder of the same file system mounted inside it (a bind mount has the
// device number of its surroundings), and a precious folder that the mount shows.
struct MountedTree {
  TempDir dir;
  std::string precious = dir.file("precious/letter.txt", "dear diary").substr(0, (dir / "precious").size());
  std::string cache = dir.mkdir("cache/app");
  std::string mountPoint = dir.mkdir("cache/app/mounted");
  std::string junk = dir.file("cache/app/junk.bin", 100);

  MountedTree() {
    dir.file("precious/photos/one.jpg", 3000);
    dir.file("cache/app/sub/more.bin", 20);
  }
};

#define SKIP_WITHOUT_NAMESPACE(result) \
  if (!(result)) GTEST_SKIP() << "no private mount namespace on this machine (needs root)"

} // namespace

TEST(MountPoints, ABindMountIsToldFromAFolderOfTheSameFileSystem) {
  MountedTree tree;
  const auto file = tree.dir.file("cache/app/file", 3);
  const auto target = tree.dir.file("precious/target", 4);
  const auto result = inPrivateMountNamespace([&] {
    if (!bindMount(tree.precious, tree.mountPoint) || !bindMount(target, file)) return 10;
    const int parent = ::open(tree.cache.c_str(), O_RDONLY | O_DIRECTORY);
    const int mounted = ::open(tree.mountPoint.c_str(), O_RDONLY | O_DIRECTORY);
    const int plain = ::open((tree.cache + "/sub").c_str(), O_RDONLY | O_DIRECTORY);
    if (!isMountPoint(parent, mounted)) return 11;
    if (isMountPoint(parent, plain)) return 12;
    EntryStatus status;
    if (!statEntry(parent, "file", status) || !status.isMountRoot) return 13;
    if (!statEntry(parent, "junk.bin", status) || status.isMountRoot) return 14;
    return 0;
  });
  SKIP_WITHOUT_NAMESPACE(result);
  EXPECT_EQ(*result, 0);
}

TEST(MountPoints, RemovalNeverEntersRemovesOrEmptiesAMountedFolder) {
  MountedTree tree;
  const auto before = treeSnapshot(tree.precious);
  const auto result = inPrivateMountNamespace([&] {
    if (!bindMount(tree.precious, tree.mountPoint)) return 10;
    if (removeItem(tree.mountPoint) != RemoveOutcome::failed) return 11;
    if (removeContents(tree.mountPoint) != RemoveOutcome::failed) return 12;
    const Removal removal = removeItemExplained(tree.cache);
    if (removal.outcome != RemoveOutcome::failed) return 13;
    if (removal.reason != "a mounted folder inside it is never entered") return 14;
    // Everything around the mount went; the mount and what it shows stayed.
    if (existsNoFollow(tree.junk) || existsNoFollow(tree.cache + "/sub")) return 15;
    if (removeContents(tree.dir / "cache") != RemoveOutcome::failed) return 16;
    return 0;
  });
  SKIP_WITHOUT_NAMESPACE(result);
  EXPECT_EQ(*result, 0);
  EXPECT_EQ(treeSnapshot(tree.precious), before);
}

TEST(MountPoints, MeasuringCountsAMountedFolderNeither) {
  MountedTree tree;
  const auto result = inPrivateMountNamespace([&] {
    if (!bindMount(tree.precious, tree.mountPoint)) return 10;
    if (logicalTreeSize(tree.cache) != 120) return 11;
    if (logicalTreeSize(tree.mountPoint) != 0) return 12;
    TreeSizer sizer(2);
    const auto sizes = sizer.sizes({tree.dir / "cache", tree.cache, tree.mountPoint});
    return sizes == std::vector<std::int64_t>{120, 120, 0} ? 0 : 13;
  });
  SKIP_WITHOUT_NAMESPACE(result);
  EXPECT_EQ(*result, 0);
}
