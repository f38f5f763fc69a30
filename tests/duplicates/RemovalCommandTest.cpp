#include <gtest/gtest.h>

#include "duplicates/RemovalCommand.h"
#include "platform/ProcessRunner.h"

namespace halcyra::testing {
namespace {

// Runs the line with `printf '%s\0'` in place of `rm -f`: the shell then prints exactly the
// arguments rm would have been given.
std::vector<std::string> argumentsOf(const std::string& line) {
  const std::string prefix = "rm -f ";
  EXPECT_EQ(line.rfind(prefix, 0), 0u);
  platform::SystemProcessRunner processes;
  const auto output = processes.run("/bin/sh", {"-c", "printf '%s\\0' " + line.substr(prefix.size())}, std::chrono::seconds(20));
  EXPECT_EQ(output.exitStatus, 0);
  std::vector<std::string> arguments;
  std::string current;
  for (const char c : output.standardOutput) {
    if (c == '\0') {
      arguments.push_back(current);
      current.clear();
    } else {
      current.push_back(c);
    }
  }
  return arguments;
}

TEST(RemovalCommandTest, EveryPathReachesTheShellAsOneUnchangedArgument) {
  const std::vector<std::string> paths{"/tmp/a'b",        "/tmp/a\"b",      "/tmp/a\\b",   "/tmp/$(touch /tmp/pwn)",
                                       "/tmp/`id`",       "/tmp/x$HOME",    "/tmp/l1\nl2", "/tmp/tab\t",
                                       "/tmp/ lead",      "/tmp/*",         "/tmp/;&|>x",  "/tmp/'\"'\"'",
                                       "/tmp/\xFF\xFE",   "/tmp/-rf"};
  const auto lines = duplicates::removalCommandLines(paths);
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(argumentsOf(lines[0]), paths);
}

TEST(RemovalCommandTest, ALargeBatchIsSplitIntoLinesThatEachFitTheLimit) {
  std::vector<std::string> paths;
  for (int i = 0; i < 3000; ++i) paths.push_back("/tmp/folder with a longish name/file '" + std::to_string(i) + "'");
  const auto lines = duplicates::removalCommandLines(paths, 20'000);
  ASSERT_GT(lines.size(), 1u);
  std::vector<std::string> all;
  for (const auto& line : lines) {
    EXPECT_LE(line.size(), 20'000u);
    const auto arguments = argumentsOf(line);
    all.insert(all.end(), arguments.begin(), arguments.end());
  }
  EXPECT_EQ(all, paths);
  EXPECT_TRUE(duplicates::removalCommandLines({}).empty());
}

} // namespace
} // namespace halcyra::testing
