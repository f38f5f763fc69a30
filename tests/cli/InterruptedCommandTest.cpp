// Ctrl-C or SIGTERM in the middle of a clean or a shred: the command stops after the item in
// hand, and what it reports is exactly what happened on disk.
//
// Made deterministic without timing: standard error is a pipe of one page that the test stops
// reading at the first "Removing"/"Shredding" line, so the command cannot get more than a page
// of status lines ahead of the signal.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <fcntl.h>
#include <regex>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/TempDir.h"

extern char** environ;

using namespace halcyra::testing;
using ::testing::HasSubstr;

namespace {

constexpr int kItems = 400; // several pages of status lines

struct Interrupted {
  bool smallPipe = true; // false where the pipe could not be made one page small
  int exitStatus = -1;
  std::string standardOutput;
  std::string standardError;
};

Interrupted runAndSignal(const TempDir& dir, const std::vector<std::string>& arguments, const std::string& cue,
                         int signal) {
  const char* bin = std::getenv("HALCYRA_TEST_BIN");
  const std::string executable = std::string(bin != nullptr ? bin : "bin") + "/halcyra";
  int errors[2];
  Interrupted result;
  if (::pipe2(errors, O_CLOEXEC) != 0) return result;
  if (::fcntl(errors[1], F_SETPIPE_SZ, 4096) < 0) {
    ::close(errors[0]);
    ::close(errors[1]);
    result.smallPipe = false;
    return result;
  }
  const std::string outPath = dir / ".out";
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  posix_spawn_file_actions_adddup2(&actions, errors[1], STDERR_FILENO);
  std::vector<std::string> argvStrings{executable};
  argvStrings.insert(argvStrings.end(), arguments.begin(), arguments.end());
  std::vector<char*> argv;
  for (auto& argument : argvStrings) argv.push_back(argument.data());
  argv.push_back(nullptr);
  pid_t pid = 0;
  const int spawned = posix_spawn(&pid, executable.c_str(), &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  ::close(errors[1]);
  if (spawned != 0) return result;
  char buffer[256];
  bool signalled = false;
  for (;;) {
    const ssize_t count = ::read(errors[0], buffer, sizeof buffer);
    if (count <= 0) break;
    result.standardError.append(buffer, static_cast<std::size_t>(count));
    if (!signalled && result.standardError.find(cue) != std::string::npos) {
      ::kill(pid, signal);
      signalled = true;
    }
  }
  ::close(errors[0]);
  int status = 0;
  ::waitpid(pid, &status, 0);
  result.exitStatus = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  result.standardOutput = readFile(outPath);
  return result;
}

int remaining(const TempDir& dir, const std::string& folder, const std::string& prefix) {
  int count = 0;
  for (int i = 0; i < kItems; ++i) count += existsNoFollow(dir / (folder + "/" + prefix + std::to_string(i))) ? 1 : 0;
  return count;
}

} // namespace

TEST(InterruptedCommand, AnInterruptedCleanSaysExactlyWhatItHadFreed) {
  TempDir dir;
  const std::string home = dir.mkdir("home");
  const std::string root = dir.mkdir("root");
  for (int i = 0; i < kItems; ++i) dir.file("home/Library/Caches/item-" + std::to_string(i) + "/blob", 1000);
  dir.file("precious/thesis.txt", "keep");

  const auto run = runAndSignal(dir, {"clean", "--yes", "--home", home, "--root", root}, "Removing ", SIGINT);
  if (!run.smallPipe) GTEST_SKIP() << "pipes cannot be made one page small here";
  EXPECT_EQ(run.exitStatus, 130) << run.standardError;
  std::smatch freed;
  ASSERT_TRUE(std::regex_search(run.standardOutput, freed, std::regex("Interrupted: freed .*, (\\d+) items? in ")))
      << run.standardOutput;
  const int cleaned = std::stoi(freed[1]);
  EXPECT_LT(cleaned, kItems);
  EXPECT_EQ(remaining(dir, "home/Library/Caches", "item-"), kItems - cleaned);
  EXPECT_THAT(run.standardError, HasSubstr("interrupted; the items not reached were left as they were"));
  EXPECT_EQ(readFile(dir / "precious/thesis.txt"), "keep");
}

TEST(InterruptedCommand, AnInterruptedShredLeavesTheRestWholeAndNoFillBehind) {
  TempDir dir;
  std::vector<std::string> arguments{"shred", "--yes", "--passes", "1"};
  for (int i = 0; i < kItems; ++i) arguments.push_back(dir.file("files/f-" + std::to_string(i), "data " + std::to_string(i)));

  const auto run = runAndSignal(dir, arguments, "Shredding ", SIGTERM);
  if (!run.smallPipe) GTEST_SKIP() << "pipes cannot be made one page small here";
  EXPECT_EQ(run.exitStatus, 143) << run.standardError;
  std::smatch shredded;
  ASSERT_TRUE(std::regex_search(run.standardOutput, shredded, std::regex("Shredded (\\d+) files?")))
      << run.standardOutput;
  const int gone = std::stoi(shredded[1]);
  EXPECT_LT(gone, kItems);
  EXPECT_EQ(remaining(dir, "files", "f-"), kItems - gone);
  for (int i = 0; i < kItems; ++i) {
    const std::string path = dir / ("files/f-" + std::to_string(i));
    if (existsNoFollow(path)) {
      EXPECT_EQ(readFile(path), "data " + std::to_string(i));
    }
  }
  EXPECT_THAT(run.standardError, HasSubstr("interrupted; "));
  EXPECT_THAT(run.standardError, HasSubstr("no fill data left behind"));
  EXPECT_THAT(run.standardError, ::testing::Not(HasSubstr("Overwriting freed space")));
}
