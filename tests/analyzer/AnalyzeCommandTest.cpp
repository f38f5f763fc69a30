#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "analyzer/DiskAnalyzerService.h"
#include "support/RunHalcyra.h"
#include "support/TempDir.h"

using halcyra::testing::runHalcyra;
using halcyra::testing::TempDir;

namespace {

void buildTree(const TempDir& dir) {
  dir.file("tree/small/a", 4096);
  dir.file("tree/large/b", 3 * 4096);
  dir.file("tree/large/nested/c", 5 * 4096);
  dir.file("tree/top", 4096);
  dir.mkdir("tree/empty");
}

} // namespace

TEST(AnalyzeCommand, JsonCarriesTheWholeResultUnderTheRecordsFieldNames) {
  TempDir dir;
  buildTree(dir);
  const auto output = runHalcyra({"analyze", "--json", dir / "tree"});
  ASSERT_EQ(output.exitStatus, 0) << output.standardError;
  const auto json = nlohmann::json::parse(output.standardOutput);
  const auto expected = halcyra::analyzer::DiskAnalyzerService({.workers = 1}).scanDirectory(dir / "tree", [](const std::string&) {});

  EXPECT_EQ(json["totalSize"], expected.totalSize);
  EXPECT_EQ(json["fileCount"], 4);
  EXPECT_EQ(json["directoryCount"], 5);
  EXPECT_TRUE(json["duration"].is_number_float());
  const auto& root = json["root"];
  // The keys of a folder come in the order the walk settles them: its size after its children.
  const auto ordered = nlohmann::ordered_json::parse(output.standardOutput);
  std::vector<std::string> keys;
  for (const auto& [key, value] : ordered["root"].items()) keys.push_back(key);
  EXPECT_EQ(keys, (std::vector<std::string>{"id", "name", "path", "children", "size", "fileCount", "isPermissionDenied"}));
  EXPECT_EQ(root["path"], dir / "tree");
  EXPECT_EQ(root["size"], expected.root.size);
  EXPECT_EQ(root["fileCount"], 1);
  EXPECT_EQ(root["isPermissionDenied"], false);
  ASSERT_EQ(root["children"].size(), expected.root.children.size());
  for (std::size_t i = 0; i < expected.root.children.size(); ++i) {
    EXPECT_EQ(root["children"][i]["name"], expected.root.children[i].name); // listing order kept
    EXPECT_EQ(root["children"][i]["size"], expected.root.children[i].size);
  }
  const auto& largest = json["largestFiles"];
  ASSERT_EQ(largest.size(), 4u);
  EXPECT_EQ(largest[0]["name"], "c");
  EXPECT_EQ(largest[0]["path"], dir / "tree/large/nested/c");
  EXPECT_EQ(largest[0]["size"], expected.largestFiles[0].size);
  EXPECT_EQ(largest[0]["id"].get<std::string>().size(), 36u);
  EXPECT_NE(output.standardError.find("Scan complete: 4 files, 5 dirs"), std::string::npos);
}

TEST(AnalyzeCommand, ReadableTableSortsSubFoldersBySizeAndGoesDeeperOnRequest) {
  TempDir dir;
  buildTree(dir);
  const auto shallow = runHalcyra({"analyze", dir / "tree"});
  ASSERT_EQ(shallow.exitStatus, 0) << shallow.standardError;
  const auto& text = shallow.standardOutput;
  EXPECT_NE(text.find("in 4 files and 5 folders"), std::string::npos) << text;
  const auto large = text.find("  large\n");
  const auto small = text.find("  small\n");
  ASSERT_NE(large, std::string::npos) << text;
  ASSERT_NE(small, std::string::npos) << text;
  EXPECT_LT(large, small);
  EXPECT_EQ(text.find("nested"), text.find("/nested/c") + 1); // only in the path of a file
  EXPECT_EQ(text.find("empty"), std::string::npos);

  const auto deeper = runHalcyra({"analyze", "--depth", "2", dir / "tree"});
  EXPECT_NE(deeper.standardOutput.find("    nested\n"), std::string::npos) << deeper.standardOutput;
}

TEST(AnalyzeCommand, MissingFolderOrFileIsAClearFailure) {
  TempDir dir;
  const auto missing = runHalcyra({"analyze", dir / "nowhere"});
  EXPECT_EQ(missing.exitStatus, 1);
  EXPECT_NE(missing.standardError.find("no such folder: " + (dir / "nowhere")), std::string::npos);
  EXPECT_TRUE(missing.standardOutput.empty());
  const auto file = runHalcyra({"analyze", dir.file("plain", 10)});
  EXPECT_EQ(file.exitStatus, 1);
  EXPECT_NE(file.standardError.find("not a folder"), std::string::npos);
  EXPECT_EQ(runHalcyra({"analyze"}).exitStatus, 2);
  EXPECT_EQ(runHalcyra({"analyze", "--depth", "0", dir.path()}).exitStatus, 2);
}
