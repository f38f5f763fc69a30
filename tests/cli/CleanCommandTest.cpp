#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "support/RunHalcyra.h"
#include "support/TempDir.h"
#include "support/TreeSnapshot.h"

using namespace halcyra::testing;
using ::testing::HasSubstr;
using ::testing::ContainsRegex;
using ::testing::Not;

namespace {

constexpr std::int64_t kDay = 86'400;

// A home with junk in several selected categories, protected categories beside them, and
// precious files that links inside the junk point at.
struct FakeMachine {
  TempDir dir;
  std::string home = dir.mkdir("home");
  std::string root = dir.mkdir("root");

  FakeMachine() {
    dir.file("home/Library/Caches/com.example.editor/blob", 3000);
    dir.symlink("home/Library/Caches/com.example.editor/documents", home + "/Documents");
    dir.file("home/Library/Logs/Example/run.log", 200);
    dir.file("home/.local/share/Trash/files/old.txt", 12);
    dir.file("home/.local/share/Trash/info/old.txt.trashinfo", "[Trash Info]\n");
    dir.file("home/Downloads/installer.dmg", 50000);                         // protected
    dir.file("home/dev/app/node_modules/left-pad/index.js", 40);             // protected
    TempDir::setAge(home + "/dev/app/node_modules", 30 * kDay);
    dir.file("home/Documents/thesis.txt", "precious");
  }

  std::vector<std::string> arguments(std::vector<std::string> options) const {
    options.insert(options.begin(), "clean");
    for (const auto& extra : {std::string("--home"), home, std::string("--root"), root}) options.push_back(extra);
    return options;
  }
};

} // namespace

TEST(CleanCommand, YesRemovesExactlyTheDefaultSelectionAndReportsIt) {
  FakeMachine machine;
  const auto keptBefore = treeSnapshot(machine.home + "/Documents");
  const auto downloadsBefore = treeSnapshot(machine.home + "/Downloads");
  const auto projectBefore = treeSnapshot(machine.home + "/dev");

  const auto scan = runHalcyra({"scan", "--json", "--home", machine.home, "--root", machine.root});
  ASSERT_EQ(scan.exitStatus, 0) << scan.standardError;
  std::int64_t selectedBytes = 0;
  int selectedItems = 0;
  for (const auto& category : nlohmann::json::parse(scan.standardOutput)) {
    if (category.at("isWhitelisted") == true || !category.at("skipReason").is_null()) continue;
    for (const auto& item : category.at("items")) {
      if (item.at("isSelected") != true) continue;
      selectedBytes += item.at("size").get<std::int64_t>();
      ++selectedItems;
    }
  }
  ASSERT_EQ(selectedItems, 3);

  const auto run = runHalcyra(machine.arguments({"--yes", "--json"}));
  ASSERT_EQ(run.exitStatus, 0) << run.standardError;
  const auto result = nlohmann::json::parse(run.standardOutput);
  EXPECT_EQ(result.at("freedBytes"), selectedBytes);
  EXPECT_EQ(result.at("itemsCleaned"), selectedItems);
  EXPECT_GE(result.at("duration").get<double>(), 0.0);
  EXPECT_THAT(run.standardError, HasSubstr("Removing com.example.editor...\n"));
  EXPECT_THAT(run.standardError, HasSubstr("Cleanup complete\n"));

  EXPECT_FALSE(existsNoFollow(machine.home + "/Library/Caches/com.example.editor"));
  EXPECT_FALSE(existsNoFollow(machine.home + "/Library/Logs/Example"));
  EXPECT_EQ(treeSnapshot(machine.home + "/.local/share/Trash").size(), 2U); // files/ and info/, empty
  EXPECT_EQ(treeSnapshot(machine.home + "/Documents"), keptBefore);
  EXPECT_EQ(treeSnapshot(machine.home + "/Downloads"), downloadsBefore);
  EXPECT_EQ(treeSnapshot(machine.home + "/dev"), projectBefore);
}

TEST(CleanCommand, ReadableRunListsTheSelectionThenTheFreedFigures) {
  FakeMachine machine;
  const auto run = runHalcyra(machine.arguments({"--yes", "--only", "User Logs", "--only", "Trash"}));
  ASSERT_EQ(run.exitStatus, 0) << run.standardError;
  EXPECT_THAT(run.standardOutput, HasSubstr("User Logs"));
  EXPECT_THAT(run.standardOutput, Not(HasSubstr("User Caches")));
  EXPECT_THAT(run.standardOutput, ContainsRegex("\nFreed 212 B, 2 items in [0-9]+\\.[0-9][0-9] s\n"));
  EXPECT_FALSE(existsNoFollow(machine.home + "/Library/Logs/Example"));
  EXPECT_FALSE(existsNoFollow(machine.home + "/.local/share/Trash/files/old.txt"));
  EXPECT_TRUE(existsNoFollow(machine.home + "/Library/Caches/com.example.editor/blob"));
}

TEST(CleanCommand, DryRunAndAMissingYesRemoveNothing) {
  FakeMachine machine;
  const auto before = treeSnapshot(machine.dir.path());

  auto run = runHalcyra(machine.arguments({"--dry-run"}));
  EXPECT_EQ(run.exitStatus, 0) << run.standardError;
  EXPECT_THAT(run.standardOutput, HasSubstr("User Caches"));
  EXPECT_THAT(run.standardOutput, HasSubstr("Dry run: nothing was removed.\n"));
  EXPECT_EQ(treeSnapshot(machine.dir.path()), before);

  run = runHalcyra(machine.arguments({"--dry-run", "--json", "--only", "User Caches"}));
  EXPECT_EQ(run.exitStatus, 0) << run.standardError;
  const auto list = nlohmann::json::parse(run.standardOutput);
  ASSERT_EQ(list.size(), 1U);
  EXPECT_EQ(list.at(0).at("name"), "User Caches");
  EXPECT_EQ(treeSnapshot(machine.dir.path()), before);

  // Standard input is not a terminal here: without --yes nobody can answer the question.
  run = runHalcyra(machine.arguments({}));
  EXPECT_EQ(run.exitStatus, 1);
  EXPECT_THAT(run.standardError, HasSubstr("--yes"));
  EXPECT_EQ(treeSnapshot(machine.dir.path()), before);

  run = runHalcyra(machine.arguments({"--yes", "stray"}));
  EXPECT_EQ(run.exitStatus, 2);
  EXPECT_EQ(treeSnapshot(machine.dir.path()), before);
}
