#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <set>
#include <sys/stat.h>

#include "analyzer/DiskAnalyzerService.h"
#include "analyzer/FolderTreeBuilder.h"
#include "analyzer/ScanJsonWriter.h"
#include "support/OrdinaryRights.h"
#include "support/TempDir.h"

using namespace halcyra::analyzer;
using halcyra::testing::OrdinaryRights;
using halcyra::testing::TempDir;
using Json = nlohmann::ordered_json;

namespace {

void quiet(const std::string&) {}

// The document the writer must produce for a tree from scanDirectory, ids and duration left
// out, keys in the order the writer gives them.
Json expectedNode(const DirectoryNode& node) {
  Json children = Json::array();
  for (const DirectoryNode& child : node.children) children.push_back(expectedNode(child));
  return Json{{"name", node.name},
              {"path", node.path},
              {"children", children},
              {"size", node.size},
              {"fileCount", node.fileCount},
              {"isPermissionDenied", node.isPermissionDenied}};
}

Json expectedDocument(const DiskAnalyzerScanResult& result) {
  Json largest = Json::array();
  for (const auto& file : result.largestFiles) {
    largest.push_back(Json{{"path", file.path}, {"name", file.name}, {"size", file.size}});
  }
  return Json{{"root", expectedNode(result.root)},
              {"totalSize", result.totalSize},
              {"fileCount", result.fileCount},
              {"directoryCount", result.directoryCount},
              {"largestFiles", largest}};
}

// Takes the ids (checking each is a UUID text seen nowhere else) and the duration out.
void takeOutIds(Json& value, std::set<std::string>& ids) {
  if (value.is_object()) {
    if (value.contains("id")) {
      const std::string id = value["id"].get<std::string>();
      EXPECT_EQ(id.size(), 36u);
      EXPECT_TRUE(ids.insert(id).second) << id;
      value.erase("id");
    }
    value.erase("duration");
  }
  if (value.is_structured()) {
    for (auto& each : value) takeOutIds(each, ids);
  }
}

struct Streamed {
  std::string text;
  std::vector<std::string> parts;
  bool rootDenied = false;
};

Streamed streamJson(const std::string& path, DiskAnalyzerService::Options options) {
  Streamed streamed;
  ScanJsonWriter writer([&](std::string_view part) {
    streamed.text += part;
    streamed.parts.emplace_back(part);
  });
  const auto summary = DiskAnalyzerService(options).scan(path, writer, quiet);
  writer.finish(summary);
  streamed.rootDenied = writer.rootDenied();
  return streamed;
}

// Folders that stay and folders that go next to each other at every level: empty folders,
// folders of empty files, a file only at the bottom of a chain, an unreadable folder, links,
// folders below the depth limit, odd names, and equal sizes around the 20th largest file.
void buildShapes(const TempDir& dir) {
  dir.mkdir("tree/empty first");
  dir.file("tree/zero", 0);
  dir.file("tree/only zeros/a", 0);
  dir.file("tree/only zeros/b", 0);
  dir.file("tree/chain/x/y/z/bottom", 4096);
  dir.mkdir("tree/chain/x/empty after");
  dir.mkdir("tree/chain/x/y/empty before");
  dir.file("tree/mixed/kept/file", 8192);
  dir.mkdir("tree/mixed/gone/deeper/still empty");
  dir.file("tree/mixed/\"quoted\" naïve/file", 4096);
  dir.file("tree/locked/secret", 1 << 20);
  ::chmod((dir / "tree/locked").c_str(), 0);
  std::string deep = "tree/deep";
  for (int level = 0; level < 15; ++level) {
    deep += "/l" + std::to_string(level);
    if (level % 5 == 4) dir.file(deep + "/f", 4096 * 3);
  }
  dir.mkdir(deep + "/nothing below the limit");
  dir.symlink("tree/chain/loop", ".");
  dir.symlink("tree/to-mixed", dir / "tree/mixed");
  for (int i = 0; i < 18; ++i) dir.file("tree/big/b" + std::to_string(i), 4096 * (20 + i));
  for (int i = 0; i < 6; ++i) dir.file("tree/ties/t" + std::to_string(i) + "/f", 4096 * 5);
  // Enough folders that the text comes in several parts.
  for (int i = 0; i < 60; ++i) {
    dir.file("tree/many/m" + std::to_string(i % 7) + "/n" + std::to_string(i) + "/f", i % 3 == 0 ? 0 : 4096);
  }
}

} // namespace

TEST(ScanJsonWriter, StreamedDocumentIsTheTreeOfScanDirectoryWithChildrenBeforeSize) {
  TempDir dir;
  buildShapes(dir);
  OrdinaryRights ordinary; // the locked folder stays locked for the scan's threads too
  const auto result = DiskAnalyzerService({.workers = 1}).scanDirectory(dir / "tree", quiet);
  ASSERT_EQ(result.largestFiles.size(), 20u);
  ASSERT_EQ(result.largestFiles[18].size, result.largestFiles[19].size); // the ties reach the list
  const Json expected = expectedDocument(result);

  for (const DiskAnalyzerService::Options options : {DiskAnalyzerService::Options{.workers = 1},
                                                     DiskAnalyzerService::Options{.workers = 2, .splitEveryFolder = true},
                                                     DiskAnalyzerService::Options{.workers = 2}}) {
    SCOPED_TRACE(std::to_string(options.workers) + (options.splitEveryFolder ? " split" : ""));
    const Streamed streamed = streamJson(dir / "tree", options);
    Json document = Json::parse(streamed.text);
    // The layout is the indented one of every other command.
    EXPECT_EQ(document.dump(2) + "\n", streamed.text);
    EXPECT_TRUE(document["duration"].is_number_float());
    std::set<std::string> ids;
    takeOutIds(document, ids);
    EXPECT_EQ(document, expected);
    EXPECT_FALSE(streamed.rootDenied);
    ASSERT_GT(streamed.parts.size(), 1u);
    for (const std::string& part : streamed.parts) EXPECT_EQ(part.back(), '\n');
  }
}

TEST(ScanJsonWriter, UnreadableRootIsWrittenWithItsMarkAndNothingBelow) {
  TempDir dir;
  dir.file("locked/inside/file", 4096);
  ::chmod((dir / "locked").c_str(), 0);
  OrdinaryRights ordinary;
  const Streamed streamed = streamJson(dir / "locked", {.workers = 2});
  EXPECT_TRUE(streamed.rootDenied);
  const Json document = Json::parse(streamed.text);
  const Json& root = document["root"];
  EXPECT_EQ(root["path"], dir / "locked");
  EXPECT_EQ(root["children"], Json::array());
  EXPECT_EQ(root["size"], 0);
  EXPECT_EQ(root["isPermissionDenied"], true);
  EXPECT_EQ(document["directoryCount"], 1);
  EXPECT_EQ(document["largestFiles"], Json::array());
}

TEST(ScanJsonWriter, NameBytesThatAreNotUtf8AreEscapedOneByOne) {
  TempDir dir;
  dir.file("tree/bad\xff name/file", 4096);
  const Streamed streamed = streamJson(dir / "tree", {.workers = 1});
  EXPECT_NE(streamed.text.find("\"name\": \"bad\\udcff name\",\n"), std::string::npos) << streamed.text;
  EXPECT_NE(streamed.text.find("\"path\": \"" + dir.path() + "/tree/bad\\udcff name/file\""), std::string::npos);
}

TEST(FolderTreeBuilder, KeepsOnlyTheLevelsAskedForWithTheSizesOfTheWholeWalk) {
  TempDir dir;
  buildShapes(dir);
  const auto whole = DiskAnalyzerService({.workers = 2}).scanDirectory(dir / "tree", quiet);
  FolderTreeBuilder builder({.levels = 1, .withIds = false});
  const auto summary = DiskAnalyzerService({.workers = 2, .splitEveryFolder = true}).scan(dir / "tree", builder, quiet);
  const DirectoryNode root = builder.takeRoot();
  EXPECT_EQ(summary.totalSize, whole.totalSize);
  EXPECT_EQ(root.size, whole.root.size);
  EXPECT_EQ(root.fileCount, whole.root.fileCount);
  EXPECT_TRUE(root.id.empty());
  ASSERT_EQ(root.children.size(), whole.root.children.size());
  for (std::size_t i = 0; i < root.children.size(); ++i) {
    EXPECT_EQ(root.children[i].path, whole.root.children[i].path);
    EXPECT_EQ(root.children[i].size, whole.root.children[i].size);
    EXPECT_EQ(root.children[i].fileCount, whole.root.children[i].fileCount);
    EXPECT_TRUE(root.children[i].children.empty()) << root.children[i].path;
  }
}
