#include <chrono>
#include <csignal>
#include <thread>
#include <gtest/gtest.h>

#include "platform/ProcessRunner.h"
#include "support/TempDir.h"

using namespace halcyra::platform;
using halcyra::testing::TempDir;
using namespace std::chrono_literals;

namespace {

// Alive and not a zombie waiting for a parent that may never reap it.
bool processAlive(pid_t pid) {
  if (::kill(pid, 0) != 0) return false;
  const std::string stat = halcyra::testing::readFile("/proc/" + std::to_string(pid) + "/stat");
  const auto close = stat.rfind(')');
  return close != std::string::npos && close + 2 < stat.size() && stat[close + 2] != 'Z';
}

} // namespace

TEST(ProcessRunner, RunsAFakeToolInPlaceOfTheFixedPath) {
  TempDir dir;
  const auto fake = dir.script("tmutil", "echo \"args: $*\"; echo oops >&2; exit 3");
  SystemProcessRunner runner({{"/usr/bin/tmutil", fake}});
  const ProcessOutput output = runner.run("/usr/bin/tmutil", {"status", "two words"}, 5s);
  EXPECT_TRUE(output.launched);
  EXPECT_FALSE(output.timedOut);
  EXPECT_EQ(output.exitStatus, 3);
  EXPECT_EQ(output.standardOutput, "args: status two words\n");
  EXPECT_EQ(output.standardError, "oops\n");
  // The exit status does not matter to the text.
  EXPECT_EQ(runner.outputText("/usr/bin/tmutil", {}, 5s), "args: \n");
}

TEST(ProcessRunner, MissingToolsInvalidTextAndTimeoutsGiveNoOutput) {
  TempDir dir;
  const auto binary = dir.script("binary", "printf 'ok\\377'");
  const auto hang = dir.script("hang", "sleep 30");
  SystemProcessRunner runner({{"/bin/df", binary}, {"/usr/bin/hdiutil", hang}});
  EXPECT_FALSE(runner.outputText(dir / "does-not-exist", {}, 5s).has_value());
  EXPECT_FALSE(runner.run(dir / "does-not-exist", {}, 5s).launched);
  EXPECT_FALSE(runner.outputText("/bin/df", {"-T"}, 5s).has_value());
  const auto started = std::chrono::steady_clock::now();
  EXPECT_FALSE(runner.outputText("/usr/bin/hdiutil", {"info"}, 300ms).has_value());
  EXPECT_LT(std::chrono::steady_clock::now() - started, 10s);
}

TEST(ProcessRunner, DrainsMegabytesWithoutStalling) {
  TempDir dir;
  // Eight megabytes on each stream: far more than a pipe holds.
  const auto chatty = dir.script("chatty", "head -c 8388608 /dev/zero | tr '\\0' a; head -c 8388608 /dev/zero >&2");
  SystemProcessRunner runner;
  const ProcessOutput output = runner.run(chatty, {}, 20s);
  EXPECT_FALSE(output.timedOut);
  EXPECT_EQ(output.exitStatus, 0);
  EXPECT_EQ(output.standardOutput.size(), 8388608u);
  EXPECT_EQ(output.standardError.size(), 8388608u);
}

TEST(ProcessRunner, TimeLimitKillsTheToolWithItsChildren) {
  TempDir dir;
  const auto pidFile = dir / "child.pid";
  const auto parent = dir.script("parent", "sleep 60 & echo $! > '" + pidFile + "'; wait");
  SystemProcessRunner runner;
  const ProcessOutput output = runner.run(parent, {}, 500ms);
  EXPECT_TRUE(output.timedOut);
  const std::string pidText = halcyra::testing::readFile(pidFile);
  ASSERT_FALSE(pidText.empty());
  const pid_t child = static_cast<pid_t>(std::stol(pidText));
  // The grandchild was in the tool's process group and went with it.
  for (int i = 0; i < 50 && processAlive(child); ++i) std::this_thread::sleep_for(20ms);
  EXPECT_FALSE(processAlive(child));
}
