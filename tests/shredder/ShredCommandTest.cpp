#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "support/RunHalcyra.h"
#include "support/TempDir.h"

namespace halcyra::shredder::testing {
namespace {

using halcyra::testing::existsNoFollow;
using halcyra::testing::readFile;
using halcyra::testing::TempDir;

platform::ProcessOutput halcyra(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), "shred");
  return halcyra::testing::runHalcyra(arguments);
}

TEST(ShredCommandTest, ShredsFoldersReportsJsonAndListsRefusedInputs) {
  TempDir tmp;
  const auto target = tmp.file("keep/doc", "precious");
  tmp.file("pick/a.bin", 3000);
  tmp.file("pick/sub/b.txt", "bee");
  const auto link = tmp.symlink("link", target);

  const auto run = halcyra({"--yes", "--json", "--passes", "1", tmp / "pick", link});

  EXPECT_EQ(run.exitStatus, 1); // one input was refused
  const auto json = nlohmann::json::parse(run.standardOutput);
  EXPECT_EQ(json.at("filesShredded"), 2);
  EXPECT_EQ(json.at("totalBytes"), 3003);
  EXPECT_EQ(json.at("passes"), 1);
  EXPECT_TRUE(json.at("duration").is_number());
  EXPECT_NE(run.standardError.find("refused " + link + ": is a symbolic link"), std::string::npos)
      << run.standardError;
  EXPECT_FALSE(existsNoFollow(tmp / "pick/a.bin"));
  EXPECT_FALSE(existsNoFollow(tmp / "pick/sub/b.txt"));
  EXPECT_TRUE(existsNoFollow(tmp / "pick/sub"));
  EXPECT_EQ(readFile(target), "precious");
  EXPECT_TRUE(existsNoFollow(link));
}

TEST(ShredCommandTest, ReadableSummaryAndCleanExitWhenEverythingWent) {
  TempDir tmp;
  const auto file = tmp.file("a file.txt", 1500);

  const auto run = halcyra({"--yes", file});

  EXPECT_EQ(run.exitStatus, 0) << run.standardError;
  EXPECT_EQ(run.standardOutput.rfind("Shredded 1 file, 2 KB (1500 bytes), 3 passes, in ", 0), 0u) << run.standardOutput;
  EXPECT_FALSE(existsNoFollow(file));
}

TEST(ShredCommandTest, UsageErrorsAndAMissingConfirmationTouchNothing) {
  TempDir tmp;
  const auto file = tmp.file("a.txt", "still here");

  EXPECT_EQ(halcyra({file}).exitStatus, 1); // standard input is no terminal and no --yes
  EXPECT_EQ(halcyra({"--yes", "--passes", "2", file}).exitStatus, 2);
  EXPECT_EQ(halcyra({"--yes"}).exitStatus, 2);
  EXPECT_EQ(readFile(file), "still here");
}

} // namespace
} // namespace halcyra::shredder::testing
