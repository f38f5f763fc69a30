#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <functional>
#include <random>
#include <set>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#include "analyzer/DiskAnalyzerService.h"
#include "support/DeepChain.h"
#include "support/OrdinaryRights.h"
#include "support/PrivateMounts.h"
#include "support/TempDir.h"

using namespace halcyra::analyzer;
using halcyra::testing::DeepChain;
using halcyra::testing::OrdinaryRights;
using halcyra::testing::TempDir;

namespace {

std::int64_t allocated(const std::string& path) {
  struct stat info {};
  if (::lstat(path.c_str(), &info) != 0) return -1;
  return static_cast<std::int64_t>(info.st_blocks) * 512;
}

// Names of a folder in the order the system lists them.
std::vector<std::string> listing(const std::string& path) {
  std::vector<std::string> names;
  DIR* dir = ::opendir(path.c_str());
  if (dir == nullptr) return names;
  while (const dirent* entry = ::readdir(dir)) {
    const std::string name = entry->d_name;
    if (name != "." && name != "..") names.push_back(name);
  }
  ::closedir(dir);
  return names;
}

struct Recorded {
  DiskAnalyzerScanResult result;
  std::vector<std::string> texts;
};

Recorded scan(const std::string& path, DiskAnalyzerService::Options options = {.workers = 1}) {
  Recorded recorded;
  recorded.result = DiskAnalyzerService(options).scanDirectory(
      path, [&](const std::string& text) { recorded.texts.push_back(text); });
  return recorded;
}

std::vector<std::string> childNames(const DirectoryNode& node) {
  std::vector<std::string> names;
  for (const auto& each : node.children) names.push_back(each.name);
  return names;
}

// The walk as plainly as it can be written: recursive, whole listings, one lstat per entry.
// The service must produce exactly this, however it splits the work.
class ReferenceWalk {
public:
  DiskAnalyzerScanResult run(const std::string& path) {
    texts.push_back("Starting scan…");
    events.push_back(texts.back());
    result.root = scanNode(path, path.substr(path.rfind('/') + 1), 0);
    result.totalSize = result.root.size;
    result.fileCount = files;
    result.directoryCount = directories;
    texts.push_back("Scan complete: " + std::to_string(files) + " files, " + std::to_string(directories) + " dirs");
    events.push_back(texts.back());
    return result;
  }

  std::vector<std::string> texts;
  /// Every folder entered and left, with the status texts where they come.
  std::vector<std::string> events;

private:
  DirectoryNode scanNode(const std::string& path, const std::string& name, int depth) {
    ++directories;
    events.push_back("enter " + name + " " + path);
    if (directories % 300 == 0) {
      texts.push_back("Scanning: " + name + " (" + std::to_string(files) + " files found)");
      events.push_back(texts.back());
    }
    DirectoryNode node = scanInside(path, name, depth);
    events.push_back("leave " + std::to_string(node.size) + " " + std::to_string(node.fileCount) +
                     (node.isPermissionDenied ? " denied" : ""));
    return node;
  }

  DirectoryNode scanInside(const std::string& path, const std::string& name, int depth) {
    DirectoryNode node;
    node.name = name;
    node.path = path;
    if (depth >= DiskAnalyzerService::kMaxDepth) {
      node.size = fastTotal(path);
      return node;
    }
    DIR* dir = ::opendir(path.c_str());
    if (dir == nullptr) {
      node.isPermissionDenied = true;
      return node;
    }
    ::closedir(dir);
    std::int64_t total = 0;
    for (const std::string& entry : listing(path)) {
      const std::string full = path + "/" + entry;
      struct stat info {};
      if (::lstat(full.c_str(), &info) != 0) continue;
      if (S_ISDIR(info.st_mode)) {
        DirectoryNode sub = scanNode(full, entry, depth + 1);
        if (sub.size >= 1) {
          total += sub.size;
          node.children.push_back(std::move(sub));
        }
      } else if (S_ISREG(info.st_mode)) {
        total += info.st_blocks * 512;
        ++files;
        ++node.fileCount;
        insertLargestFile({"", full, entry, info.st_blocks * 512}, result.largestFiles);
      }
    }
    node.size = total;
    return node;
  }

  std::int64_t fastTotal(const std::string& path) {
    std::int64_t total = 0;
    for (const std::string& entry : listing(path)) {
      const std::string full = path + "/" + entry;
      struct stat info {};
      if (::lstat(full.c_str(), &info) != 0) continue;
      if (S_ISDIR(info.st_mode)) {
        total += fastTotal(full);
      } else if (S_ISREG(info.st_mode)) {
        total += info.st_blocks * 512;
        ++files;
        insertLargestFile({"", full, entry, info.st_blocks * 512}, result.largestFiles);
      }
    }
    return total;
  }

  DiskAnalyzerScanResult result;
  std::int64_t files = 0;
  std::int64_t directories = 0;
};

void expectSameTree(const DirectoryNode& actual, const DirectoryNode& expected) {
  SCOPED_TRACE(expected.path);
  EXPECT_EQ(actual.name, expected.name);
  EXPECT_EQ(actual.path, expected.path);
  EXPECT_EQ(actual.size, expected.size);
  EXPECT_EQ(actual.fileCount, expected.fileCount);
  EXPECT_EQ(actual.isPermissionDenied, expected.isPermissionDenied);
  ASSERT_EQ(childNames(actual), childNames(expected));
  for (std::size_t i = 0; i < actual.children.size(); ++i) expectSameTree(actual.children[i], expected.children[i]);
}

void expectSameScan(const Recorded& actual, const DiskAnalyzerScanResult& expected,
                    const std::vector<std::string>& expectedTexts) {
  expectSameTree(actual.result.root, expected.root);
  EXPECT_EQ(actual.result.totalSize, expected.totalSize);
  EXPECT_EQ(actual.result.fileCount, expected.fileCount);
  EXPECT_EQ(actual.result.directoryCount, expected.directoryCount);
  ASSERT_EQ(actual.result.largestFiles.size(), expected.largestFiles.size());
  for (std::size_t i = 0; i < expected.largestFiles.size(); ++i) {
    EXPECT_EQ(actual.result.largestFiles[i].path, expected.largestFiles[i].path) << "place " << i;
    EXPECT_EQ(actual.result.largestFiles[i].name, expected.largestFiles[i].name);
    EXPECT_EQ(actual.result.largestFiles[i].size, expected.largestFiles[i].size);
  }
  EXPECT_EQ(actual.texts, expectedTexts);
}

// A tree with the shapes that matter: many folders (several status texts), files of equal
// sizes in many places (ties for the largest files), empty folders, links, hidden entries and
// branches below the depth limit.
void buildMixedTree(const TempDir& dir, unsigned randomState) {
  std::mt19937 random(randomState);
  std::vector<std::string> folders{"tree"};
  dir.mkdir("tree");
  for (int i = 0; i < 700; ++i) {
    const std::string parent = folders[random() % folders.size()];
    const std::string name = (random() % 7 == 0 ? "." : "") + std::string("d") + std::to_string(i);
    folders.push_back(dir.mkdir(parent + "/" + name).substr(dir.path().size() + 1));
  }
  std::string deep = "tree/deep";
  for (int level = 0; level < 16; ++level) {
    deep += "/l" + std::to_string(level);
    dir.file(deep + "/f" + std::to_string(level), 4096 * (1 + level % 3));
    if (level % 4 == 0) dir.mkdir(deep + "/side/x" + std::to_string(level));
  }
  for (int i = 0; i < 900; ++i) {
    const std::string parent = folders[random() % folders.size()];
    const std::int64_t blocks = 1 + static_cast<std::int64_t>(random() % 6); // plenty of ties
    dir.file(parent + "/f" + std::to_string(i), blocks * 4096 - static_cast<std::int64_t>(random() % 100));
  }
  dir.symlink("tree/up", "..");
  dir.symlink("tree/d3/loop", ".");
  dir.symlink("tree/outside", dir.path());
}

// One thread, every folder handed away, threads that share work only when one is idle, and
// threads that must wait for the sequential order after every few folders walked ahead.
std::vector<DiskAnalyzerService::Options> splitSetups() {
  return {
      {.workers = 1, .splitEveryFolder = false},
      {.workers = 1, .splitEveryFolder = true},
      {.workers = 2, .splitEveryFolder = true},
      {.workers = 2, .splitEveryFolder = false},
      {.workers = 3, .splitEveryFolder = false},
      {.workers = 3, .splitEveryFolder = true, .aheadLogLimit = 1},
      {.workers = 2, .splitEveryFolder = false, .aheadLogLimit = 64},
  };
}

// Writes what a scan streams, folders entered and left, in the form ReferenceWalk::events has.
class RecordingSink final : public FolderSink {
public:
  void enterFolder(std::string_view name, std::string_view path) override {
    events.push_back("enter " + std::string(name) + " " + std::string(path));
  }
  void leaveFolder(const Totals& totals) override {
    events.push_back("leave " + std::to_string(totals.size) + " " + std::to_string(totals.fileCount) +
                     (totals.isPermissionDenied ? " denied" : ""));
  }

  std::vector<std::string> events;
};

} // namespace

TEST(DiskAnalyzerService, FolderOfFilesHasNoChildrenAndWeighsItsAllocatedBlocks) {
  TempDir dir;
  const auto a = dir.file("data/a.bin", 10000);
  const auto b = dir.file("data/.hidden", 1); // hidden entries are seen
  const auto c = dir.file("data/empty", 0);
  const auto scanned = scan(dir / "data");
  const auto& root = scanned.result.root;
  EXPECT_EQ(root.name, "data");
  EXPECT_EQ(root.path, dir / "data");
  EXPECT_TRUE(root.children.empty());
  EXPECT_EQ(root.fileCount, 3);
  EXPECT_EQ(root.size, allocated(a) + allocated(b) + allocated(c));
  EXPECT_GE(root.size, 12288); // space on disk, not the 10001 bytes of content
  EXPECT_EQ(scanned.result.totalSize, root.size);
  EXPECT_EQ(scanned.result.fileCount, 3);
  EXPECT_EQ(scanned.result.directoryCount, 1);
  ASSERT_EQ(scanned.result.largestFiles.size(), 3u);
  EXPECT_EQ(scanned.result.largestFiles[0].path, a);
  EXPECT_EQ(scanned.result.largestFiles[0].name, "a.bin");
  EXPECT_EQ(scanned.result.largestFiles[2].name, "empty");
  EXPECT_EQ(scanned.texts, (std::vector<std::string>{"Starting scan…", "Scan complete: 3 files, 1 dirs"}));
}

TEST(DiskAnalyzerService, SymbolicLinksAndSpecialFilesAddNothing) {
  TempDir dir;
  dir.file("big/huge", 1 << 20);
  const auto own = dir.file("root/own", 4096);
  dir.symlink("root/to-folder", dir / "big");
  dir.symlink("root/to-file", dir / "big/huge");
  dir.symlink("root/loop", ".");
  dir.symlink("root/sub/up", "..");
  ASSERT_EQ(::mkfifo((dir / "root/pipe").c_str(), 0644), 0); // never opened, so nothing blocks
  const auto scanned = scan(dir / "root");
  EXPECT_EQ(scanned.result.totalSize, allocated(own));
  EXPECT_EQ(scanned.result.fileCount, 1);
  EXPECT_EQ(scanned.result.directoryCount, 2); // root and sub, which holds only a link
  EXPECT_TRUE(scanned.result.root.children.empty());
}

TEST(DiskAnalyzerService, FolderThatCannotBeListedGivesMarkedEmptyRoot) {
  TempDir dir;
  const auto file = dir.file("plain-file", 100);
  for (const std::string& path : {dir / "missing", file}) {
    const auto scanned = scan(path);
    EXPECT_EQ(scanned.result.totalSize, 0);
    EXPECT_EQ(scanned.result.fileCount, 0);
    EXPECT_EQ(scanned.result.directoryCount, 1);
    EXPECT_TRUE(scanned.result.root.isPermissionDenied);
    EXPECT_TRUE(scanned.result.root.children.empty());
    EXPECT_TRUE(scanned.result.largestFiles.empty());
    EXPECT_EQ(scanned.texts.back(), "Scan complete: 0 files, 1 dirs");
  }
}

TEST(InsertLargestFile, FullListTakesOnlyStrictlyLargerEntriesAndKeepsEqualOnesInArrivalOrder) {
  std::vector<LargestFileEntry> list;
  for (int i = 0; i < 20; ++i) insertLargestFile({"", "/f" + std::to_string(i), "f", 100 - (i % 5)}, list);
  EXPECT_EQ(list.size(), 20u);
  EXPECT_EQ(list.front().path, "/f0");   // first of the four of size 100
  EXPECT_EQ(list[1].path, "/f5");
  EXPECT_EQ(list.back().path, "/f19");   // last of the size-96 ones
  insertLargestFile({"", "/equal", "equal", 96}, list);
  EXPECT_EQ(list.back().path, "/f19");   // an equal size displaces nothing
  insertLargestFile({"", "/larger", "larger", 98}, list);
  EXPECT_EQ(list.size(), 20u);
  EXPECT_EQ(list.back().path, "/f14");   // the last one went
  EXPECT_EQ(list[11].path, "/f17");      // the newcomer sorts behind the size-98 entries it ties with
  EXPECT_EQ(list[12].path, "/larger");
}

TEST(DiskAnalyzerService, SplitWorkGivesTheSequentialResultAndTexts) {
  TempDir dir;
  buildMixedTree(dir, 7);
  ReferenceWalk reference;
  const auto expected = reference.run(dir / "tree");
  ASSERT_GE(expected.directoryCount, 600);
  ASSERT_EQ(expected.largestFiles.size(), 20u);

  for (const auto& options : splitSetups()) {
    SCOPED_TRACE(std::to_string(options.workers) + (options.splitEveryFolder ? " split" : "") + " ahead " +
                 std::to_string(options.aheadLogLimit));
    const auto scanned = scan(dir / "tree", options);
    expectSameScan(scanned, expected, reference.texts);

    // Every node and every entry of the list has an id of its own.
    std::set<std::string> ids;
    std::size_t count = 0;
    std::vector<const DirectoryNode*> pending{&scanned.result.root};
    while (!pending.empty()) {
      const DirectoryNode* node = pending.back();
      pending.pop_back();
      ids.insert(node->id);
      ++count;
      for (const auto& each : node->children) pending.push_back(&each);
    }
    for (const auto& entry : scanned.result.largestFiles) {
      ids.insert(entry.id);
      ++count;
    }
    EXPECT_EQ(ids.size(), count);
    EXPECT_EQ(scanned.result.root.id.size(), 36u);
  }
}

TEST(DiskAnalyzerService, StreamedFoldersComeInWalkOrderWithEmptyAndUnreadableOnesAndTheTextsBetween) {
  TempDir dir;
  buildMixedTree(dir, 11);
  dir.file("tree/locked/inner/secret", 4096);
  dir.mkdir("tree/d5/empty-leaf");
  ::chmod((dir / "tree/locked").c_str(), 0);
  OrdinaryRights ordinary; // the scan's threads start from this one and inherit it
  ReferenceWalk reference;
  const auto expected = reference.run(dir / "tree");
  ASSERT_NE(std::find(reference.events.begin(), reference.events.end(), "leave 0 0 denied"), reference.events.end());

  for (const auto& options : splitSetups()) {
    SCOPED_TRACE(std::to_string(options.workers) + (options.splitEveryFolder ? " split" : "") + " ahead " +
                 std::to_string(options.aheadLogLimit));
    RecordingSink sink;
    const auto summary = DiskAnalyzerService(options).scan(
        dir / "tree", sink, [&](const std::string& text) { sink.events.push_back(text); });
    EXPECT_EQ(sink.events, reference.events);
    EXPECT_EQ(summary.totalSize, expected.totalSize);
    EXPECT_EQ(summary.fileCount, expected.fileCount);
    EXPECT_EQ(summary.directoryCount, expected.directoryCount);
    ASSERT_EQ(summary.largestFiles.size(), expected.largestFiles.size());
    for (std::size_t i = 0; i < expected.largestFiles.size(); ++i) {
      EXPECT_EQ(summary.largestFiles[i].path, expected.largestFiles[i].path) << "place " << i;
      EXPECT_EQ(summary.largestFiles[i].id.size(), 36u);
    }
  }
}

TEST(DiskAnalyzerService, PathIsMadeAbsoluteWithoutTrailingSlashes) {
  TempDir dir;
  dir.file("some folder/f", 10);
  const auto scanned = scan(dir.path() + "//some folder/./");
  EXPECT_EQ(scanned.result.root.path, dir / "some folder");
  EXPECT_EQ(scanned.result.root.name, "some folder");
  EXPECT_EQ(scanned.result.largestFiles.at(0).path, dir / "some folder/f");
}

namespace {

int openDescriptors() { return static_cast<int>(listing("/proc/self/fd").size()); }

} // namespace

TEST(DiskAnalyzerService, DeepTreesAreWalkedWithFewDescriptorsAndNoPathLimit) {
  TempDir dir;
  dir.mkdir("root");
  // 250 levels of 40-character names: about 10,000 bytes of path, far deeper than the walk
  // keeps descriptors for, with files on the way back up at every level.
  const std::string segment(40, 's');
  {
    const DeepChain chain(dir / "root", 250, segment, 1, std::string(4096, 'x'));
    ASSERT_TRUE(chain.made());
    dir.file("root/after", 4096);
    const int before = openDescriptors();
    for (const unsigned workers : {1u, 2u}) {
      const auto scanned = scan(dir / "root", {.workers = workers, .splitEveryFolder = workers == 2});
      EXPECT_EQ(scanned.result.fileCount, 251);
      EXPECT_EQ(scanned.result.directoryCount, 13);
      EXPECT_EQ(scanned.result.totalSize, 251 * allocated(dir / "root/after"));
      EXPECT_EQ(openDescriptors(), before);
    }
  }
}

TEST(DiskAnalyzerService, AFolderMountedInsideTheScanIsNotCountedAgain) {
  TempDir dir;
  dir.file("data/a.bin", 10000);
  dir.file("data/sub/b.bin", 5000);
  const auto mountPoint = dir.mkdir("data/again");
  const auto plain = scan(dir / "data");
  const auto result = halcyra::testing::inPrivateMountNamespace([&] {
    // The scanned folder shown again inside itself, on the same file system.
    if (!halcyra::testing::bindMount(dir / "data", mountPoint)) return 10;
    const auto mounted = scan(dir / "data");
    if (mounted.result.fileCount != plain.result.fileCount) return 11;
    if (mounted.result.totalSize != plain.result.totalSize) return 12;
    return 0;
  });
  if (!result) GTEST_SKIP() << "no private mount namespace on this machine (needs root)";
  EXPECT_EQ(*result, 0);
}
