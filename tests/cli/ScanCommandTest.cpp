#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "support/RunHalcyra.h"
#include "support/TempDir.h"

using namespace halcyra::testing;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

namespace {

constexpr std::int64_t kDay = 86'400;

// A small home and system root with something for several sections, a protected category and
// a skipped one is not possible without running processes, so that one is left to the engine's
// tests.
struct FakeMachine {
  TempDir dir;
  std::string home = dir.mkdir("home");
  std::string root = dir.mkdir("root");

  FakeMachine() {
    dir.file("home/Library/Caches/com.example.editor/blob", 3000);
    dir.file("home/Library/Caches/com.example.editor/.hidden", 99999);
    dir.file("home/Library/Logs/Example/run.log", 200);
    dir.file("home/Downloads/installer.dmg", 50000);
    dir.file("home/.npm/_cacache/index-v5/aa", 700);
    dir.file("home/.local/share/Trash/files/old.txt", 12);
    dir.file("home/dev/app/node_modules/left-pad/index.js", 40);
    TempDir::setAge(home + "/dev/app/node_modules", 30 * kDay);
    dir.file("root/Library/Caches/com.vendor.daemon/x", 5000); // needs Full Disk Access: not scanned
  }
};

const nlohmann::json* category(const nlohmann::json& list, const std::string& name) {
  for (const auto& entry : list) {
    if (entry.at("name") == name) return &entry;
  }
  return nullptr;
}

} // namespace

TEST(ScanCommand, JsonListsEveryCategoryInScanOrderWithTheRecordsFields) {
  FakeMachine machine;
  const auto run = runHalcyra({"scan", "--json", "--home", machine.home, "--root", machine.root});
  ASSERT_TRUE(run.launched);
  ASSERT_EQ(run.exitStatus, 0) << run.standardError;
  const auto list = nlohmann::json::parse(run.standardOutput);
  ASSERT_TRUE(list.is_array());

  std::vector<std::string> names;
  for (const auto& entry : list) names.push_back(entry.at("name"));
  EXPECT_THAT(names, ElementsAre("User Caches", "User Logs", "Trash (1 item)", "Downloads", "npm Cache",
                                 "Project Build Artifacts"));

  const auto* caches = category(list, "User Caches");
  ASSERT_NE(caches, nullptr);
  std::vector<std::string> keys;
  for (const auto& [key, value] : caches->items()) keys.push_back(key);
  EXPECT_THAT(keys, ::testing::UnorderedElementsAre("id", "name", "icon", "section", "items", "isSelected",
                                                    "isWhitelisted", "skipReason"));
  EXPECT_TRUE(caches->at("skipReason").is_null());
  EXPECT_EQ(caches->at("section"), "User");
  const auto& item = caches->at("items").at(0);
  EXPECT_EQ(item.at("path"), machine.home + "/Library/Caches/com.example.editor");
  EXPECT_EQ(item.at("size"), 3000);
  EXPECT_EQ(item.at("isSelected"), true);
  EXPECT_EQ(item.at("id").get<std::string>().size(), 36u);

  // Protected categories are part of the list, unselected.
  const auto* downloads = category(list, "Downloads");
  ASSERT_NE(downloads, nullptr);
  EXPECT_EQ(downloads->at("isWhitelisted"), true);
  EXPECT_EQ(downloads->at("isSelected"), false);
  const auto* artifacts = category(list, "Project Build Artifacts");
  ASSERT_NE(artifacts, nullptr);
  EXPECT_EQ(artifacts->at("items").at(0).at("path"), machine.home + "/dev/app/node_modules");

  // Status texts go to standard error as plain lines when it is not a terminal.
  EXPECT_THAT(run.standardError, HasSubstr("Scanning User Caches...\n"));
  EXPECT_THAT(run.standardError, HasSubstr("Scan complete\n"));
  EXPECT_THAT(run.standardOutput, Not(HasSubstr("Scanning")));
}

TEST(ScanCommand, ReadableOutputShowsSectionsWithoutProtectedCategories) {
  FakeMachine machine;
  const auto run = runHalcyra({"scan", "--home", machine.home, "--root", machine.root});
  ASSERT_EQ(run.exitStatus, 0) << run.standardError;
  const std::string& text = run.standardOutput;
  EXPECT_THAT(text, StartsWith("User Junk — 3 KB\n"));
  EXPECT_THAT(text, HasSubstr("User Caches"));
  EXPECT_THAT(text, HasSubstr("Developer Files — 700 B\n"));
  EXPECT_LT(text.find("User Junk"), text.find("Developer Files"));
  EXPECT_THAT(text, Not(HasSubstr("Downloads")));
  EXPECT_THAT(text, Not(HasSubstr("Project Build Artifacts")));
  EXPECT_THAT(text, HasSubstr("\n4 KB of junk files (4 items)\n"));
}

TEST(ScanCommand, PathsThatAreNotUtf8KeepTheirBytesInJson) {
  TempDir dir;
  const std::string home = dir.mkdir("home");
  dir.file(std::string("home/Library/Caches/caf\xe9-\xff/data"), 10);
  const auto run = runHalcyra({"scan", "--json", "--home", home, "--root", dir.mkdir("root")});
  ASSERT_EQ(run.exitStatus, 0) << run.standardError;
  // Each stray byte becomes \udcXX; nothing is replaced by U+FFFD or dropped.
  EXPECT_THAT(run.standardOutput, HasSubstr("/Library/Caches/caf\\udce9-\\udcff\""));
  EXPECT_THAT(run.standardOutput, Not(HasSubstr("\xef\xbf\xbd")));
}

TEST(ScanCommand, UsageErrorsHelpAndVersion) {
  auto run = runHalcyra({"scan", "--bogus"});
  EXPECT_EQ(run.exitStatus, 2);
  EXPECT_THAT(run.standardError, HasSubstr("unknown option --bogus"));
  EXPECT_THAT(run.standardError, HasSubstr("Usage: halcyra scan"));

  run = runHalcyra({"scan", "extra"});
  EXPECT_EQ(run.exitStatus, 2);
  run = runHalcyra({"scan", "--home"});
  EXPECT_EQ(run.exitStatus, 2);
  EXPECT_THAT(run.standardError, HasSubstr("--home needs a value"));

  TempDir dir;
  run = runHalcyra({"scan", "--home", dir / "missing"});
  EXPECT_EQ(run.exitStatus, 1);
  EXPECT_THAT(run.standardError, HasSubstr("no such folder"));
  EXPECT_THAT(run.standardOutput, ::testing::IsEmpty());

  run = runHalcyra({"scan", "--help"});
  EXPECT_EQ(run.exitStatus, 0);
  EXPECT_THAT(run.standardOutput, StartsWith("Usage: halcyra scan"));
  run = runHalcyra({"--help"});
  EXPECT_EQ(run.exitStatus, 0);
  EXPECT_THAT(run.standardOutput, HasSubstr("scan"));
  run = runHalcyra({"--version"});
  EXPECT_EQ(run.exitStatus, 0);
  EXPECT_THAT(run.standardOutput, StartsWith("halcyra "));
}

// The command reads an installed application's identifier from its property list (the
// library for it is loaded on first use), so only the leftovers of applications that are gone
// count as orphans.
TEST(ScanCommand, OrphansAreTheFoldersOfApplicationsNoLongerInstalled) {
  TempDir dir;
  const std::string home = dir.mkdir("home");
  const std::string root = dir.mkdir("root");
  dir.file("home/Library/Caches/com.example.gone/data", 4000);
  dir.file("home/Library/Caches/com.example.kept/data", 4000);
  TempDir::setAge(home + "/Library/Caches/com.example.gone", 60 * kDay);
  TempDir::setAge(home + "/Library/Caches/com.example.kept", 60 * kDay);
  dir.file("root/Applications/Kept.app/Contents/Info.plist",
           "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>"
           "<key>CFBundleIdentifier</key><string>com.example.kept</string></dict></plist>\n");

  const auto run = runHalcyra({"scan", "--json", "--home", home, "--root", root});
  ASSERT_EQ(run.exitStatus, 0) << run.standardError;
  const auto list = nlohmann::json::parse(run.standardOutput);
  const auto* orphans = category(list, "Orphaned App Data");
  ASSERT_NE(orphans, nullptr);
  std::vector<std::string> paths;
  for (const auto& item : orphans->at("items")) paths.push_back(item.at("path"));
  EXPECT_THAT(paths, ElementsAre(home + "/Library/Caches/com.example.gone"));
}
