#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "support/RunHalcyra.h"
#include "support/TempDir.h"

namespace halcyra::testing {
namespace {

using ::testing::HasSubstr;

// Drives the real `halcyra duplicates` on a generated tree. Standard input is empty, as it is
// for any script: never a terminal.
class DuplicatesCommandTest : public ::testing::Test {
protected:
  platform::ProcessOutput halcyra(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "duplicates");
    return runHalcyra(arguments);
  }

  void SetUp() override {
    oldest = dir.file("photos/a.jpg", std::string(5000, 'j'));
    newest = dir.file("backup/a.jpg", std::string(5000, 'j'));
    unique = dir.file("photos/b.jpg", std::string(5000, 'k'));
    TempDir::setAge(oldest, 2000);
    TempDir::setAge(newest, 1000);
  }

  TempDir dir;
  std::string oldest, newest, unique;
};

TEST_F(DuplicatesCommandTest, JsonListsEachGroupWithItsFilesAndSelection) {
  const auto output = halcyra({dir.path(), "--json"});
  ASSERT_EQ(output.exitStatus, 0) << output.standardError;
  EXPECT_THAT(output.standardError, HasSubstr("Found 1 duplicate groups"));
  const auto groups = nlohmann::json::parse(output.standardOutput);
  ASSERT_EQ(groups.size(), 1u);
  EXPECT_EQ(groups[0]["representativeFileName"], "a.jpg");
  EXPECT_EQ(groups[0]["fileSize"], 5000);
  EXPECT_EQ(groups[0]["fileHash"].get<std::string>().size(), 12u);
  ASSERT_EQ(groups[0]["files"].size(), 2u);
  EXPECT_EQ(groups[0]["files"][0]["path"], oldest);
  EXPECT_EQ(groups[0]["files"][0]["isSelected"], false);
  EXPECT_EQ(groups[0]["files"][1]["path"], newest);
  EXPECT_EQ(groups[0]["files"][1]["isSelected"], true);
  EXPECT_EQ(groups[0]["files"][1]["modificationDate"].get<std::string>().back(), 'Z');

  // Below the minimum size nothing is compared.
  const auto small = halcyra({dir.path(), "--json", "--min-size", "5001"});
  EXPECT_EQ(nlohmann::json::parse(small.standardOutput), nlohmann::json::array());
}

TEST_F(DuplicatesCommandTest, PlainListingMarksTheCopiesToRemoveAndSumsThem) {
  const auto output = halcyra({dir.path(), "--keep", "newest"});
  ASSERT_EQ(output.exitStatus, 0) << output.standardError;
  const auto& text = output.standardOutput;
  EXPECT_THAT(text, HasSubstr("a.jpg  "));
  EXPECT_THAT(text, HasSubstr(" each, 2 copies\n"));
  const auto removeLine = text.find("  remove  ");
  const auto keepLine = text.find("  keep    ");
  ASSERT_NE(removeLine, std::string::npos);
  ASSERT_NE(keepLine, std::string::npos);
  // Oldest first: the oldest copy goes when the newest is kept.
  EXPECT_LT(removeLine, keepLine);
  EXPECT_EQ(text.substr(text.find('\n', removeLine) - oldest.size(), oldest.size()), oldest);
  EXPECT_THAT(text, HasSubstr("\n1 group, 1 copy to remove, 5 KB reclaimable\n"));

  const auto none = halcyra({dir.path(), "--min-size", "6000"});
  EXPECT_EQ(none.standardOutput, "No duplicate files found.\n");
}

TEST_F(DuplicatesCommandTest, DeletingNeedsYesWhenNoOneCanBeAsked) {
  const auto refused = halcyra({dir.path(), "--delete"});
  EXPECT_EQ(refused.exitStatus, 1);
  EXPECT_THAT(refused.standardError, HasSubstr("--yes"));
  EXPECT_TRUE(existsNoFollow(newest));

  const auto deleted = halcyra({dir.path(), "--delete", "--yes", "--keep", "newest"});
  ASSERT_EQ(deleted.exitStatus, 0) << deleted.standardError;
  EXPECT_THAT(deleted.standardOutput, HasSubstr("Deleted 1 file, freed 5 KB"));
  EXPECT_FALSE(existsNoFollow(oldest));
  EXPECT_TRUE(existsNoFollow(newest));
  EXPECT_TRUE(existsNoFollow(unique));
}

TEST_F(DuplicatesCommandTest, BadFoldersAndBadOptionsAreClearErrors) {
  const auto missing = halcyra({dir / "missing"});
  EXPECT_EQ(missing.exitStatus, 1);
  EXPECT_THAT(missing.standardError, HasSubstr("cannot open folder"));
  EXPECT_EQ(halcyra({oldest}).exitStatus, 1);
  EXPECT_EQ(halcyra({dir.path(), "--keep", "largest"}).exitStatus, 2);
  EXPECT_EQ(halcyra({dir.path(), "--min-size", "-1"}).exitStatus, 2);
  EXPECT_EQ(halcyra({}).exitStatus, 2);
}

} // namespace
} // namespace halcyra::testing
