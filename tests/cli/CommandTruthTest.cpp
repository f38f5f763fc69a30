// What every command says is true: names cannot forge lines, output that did not arrive is not
// a success, and the same situation ends with the same status in every command.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <set>
#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <nlohmann/json.hpp>

#include "cli/Terminal.h"
#include "support/TempDir.h"
#include "support/TreeSnapshot.h"

extern char** environ;

using namespace halcyra::testing;
using halcyra::cli::escapedName;
using ::testing::ContainsRegex;
using ::testing::HasSubstr;
using ::testing::Not;

namespace {

struct Run {
  int exitStatus = -1;
  int signal = 0; // the signal that ended it, 0 when it exited
  std::string standardOutput;
  std::string standardError;
};

// Runs the built halcyra with the given standard input and output (-1: a file read back into
// the result); standard error always goes to a file. Nothing here is a terminal unless given.
// With a `launcher`, halcyra runs through it (setpriv, to drop root's rights).
Run runWith(const TempDir& dir, const std::vector<std::string>& arguments, int input, int output,
            const std::vector<std::string>& launcher = {}) {
  const char* bin = std::getenv("HALCYRA_TEST_BIN");
  const std::string halcyra = std::string(bin != nullptr ? bin : "bin") + "/halcyra";
  const std::string executable = launcher.empty() ? halcyra : launcher.front();
  const std::string outPath = dir / ".run-out";
  const std::string errPath = dir / ".run-err";
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  if (input >= 0) posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
  else posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  if (output >= 0) posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
  else posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  std::vector<std::string> argvStrings = launcher;
  argvStrings.push_back(halcyra);
  argvStrings.insert(argvStrings.end(), arguments.begin(), arguments.end());
  std::vector<char*> argv;
  for (auto& argument : argvStrings) argv.push_back(argument.data());
  argv.push_back(nullptr);
  pid_t pid = 0;
  Run run;
  if (posix_spawn(&pid, executable.c_str(), &actions, nullptr, argv.data(), environ) != 0) return run;
  posix_spawn_file_actions_destroy(&actions);
  int status = 0;
  ::waitpid(pid, &status, 0);
  if (WIFEXITED(status)) run.exitStatus = WEXITSTATUS(status);
  if (WIFSIGNALED(status)) run.signal = WTERMSIG(status);
  if (output < 0) run.standardOutput = readFile(outPath);
  run.standardError = readFile(errPath);
  ::unlink(outPath.c_str());
  ::unlink(errPath.c_str());
  return run;
}

Run run(const TempDir& dir, const std::vector<std::string>& arguments) { return runWith(dir, arguments, -1, -1); }

// Runs with a terminal as standard input on which `answer` has already been typed.
Run answering(const TempDir& dir, const std::vector<std::string>& arguments, const std::string& answer) {
  const int controller = ::posix_openpt(O_RDWR | O_NOCTTY);
  if (controller < 0 || ::grantpt(controller) != 0 || ::unlockpt(controller) != 0) {
    ADD_FAILURE() << "no pseudo-terminal";
    return {};
  }
  const int terminal = ::open(::ptsname(controller), O_RDWR | O_NOCTTY);
  EXPECT_EQ(::write(controller, answer.data(), answer.size()), static_cast<ssize_t>(answer.size()));
  Run result = runWith(dir, arguments, terminal, -1);
  ::close(terminal);
  ::close(controller);
  return result;
}

std::size_t lineCount(const std::string& text) { return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')); }

// A home with junk the cleaner selects, two identical files for the duplicate finder and a file
// to shred, all with names that try to forge lines and colours.
struct Machine {
  TempDir dir;
  std::string home = dir.mkdir("home");
  std::string root = dir.mkdir("root");
  std::string forged = "a\nremove  /etc/passwd";
  std::string coloured = "b\033[31mred";
  std::string work = dir.mkdir("work");

  Machine() {
    dir.file("home/Library/Caches/com.example.app/blob", 3000);
    dir.file("work/" + forged, std::string(5000, 'x'));
    dir.file("work/" + coloured, std::string(5000, 'x'));
  }
  std::vector<std::string> clean(std::vector<std::string> options) const {
    options.insert(options.begin(), "clean");
    for (const auto& extra : {std::string("--home"), home, std::string("--root"), root}) options.push_back(extra);
    return options;
  }
};

} // namespace

TEST(EscapedNames, ControlCharactersAndInvisibleDirectionMarksAreEscapedAsLsDoes) {
  EXPECT_EQ(escapedName("a\nb\tc\rd"), "a\\nb\\tc\\rd");
  EXPECT_EQ(escapedName("\033[2J\a\b\f\v"), "\\033[2J\\a\\b\\f\\v");
  EXPECT_EQ(escapedName(std::string("nul\0del\x7f", 8)), "nul\\000del\\177");
  EXPECT_EQ(escapedName("back\\slash"), "back\\\\slash"); // so an escape in a name reads as one
  EXPECT_EQ(escapedName("bad\xff\xfe"), "bad\\377\\376");
  EXPECT_EQ(escapedName("\xc2\x9b" "1m"), "\\302\\2331m");                   // C1 CSI
  EXPECT_EQ(escapedName("cod\xe2\x80\xae" "fdp.exe"), "cod\\342\\200\\256fdp.exe"); // right-to-left override
  EXPECT_EQ(escapedName("caf\xc3\xa9 \xe6\x97\xa5 \xf0\x9f\x98\x80 a b"), "caf\xc3\xa9 \xe6\x97\xa5 \xf0\x9f\x98\x80 a b");
  EXPECT_EQ(escapedName("\xe2\x82"), "\\342\\202"); // a sequence cut short
}

TEST(CommandOutput, NamesInReadableOutputCannotForgeLinesWhileJsonKeepsThemWhole) {
  Machine machine;
  const auto analyzed = run(machine.dir, {"analyze", machine.work});
  ASSERT_EQ(analyzed.exitStatus, 0) << analyzed.standardError;
  EXPECT_THAT(analyzed.standardOutput, HasSubstr("a\\nremove  /etc/passwd"));
  EXPECT_THAT(analyzed.standardOutput, HasSubstr("b\\033[31mred"));
  EXPECT_THAT(analyzed.standardOutput, Not(ContainsRegex("\nremove")));
  EXPECT_EQ(analyzed.standardOutput.find('\033'), std::string::npos);

  const auto listed = run(machine.dir, {"duplicates", machine.work, "--min-size", "1"});
  ASSERT_EQ(listed.exitStatus, 0) << listed.standardError;
  EXPECT_THAT(listed.standardOutput, HasSubstr(escapedName(machine.work + "/" + machine.forged)));
  EXPECT_THAT(listed.standardOutput, Not(ContainsRegex("\nremove")));
  EXPECT_EQ(listed.standardOutput.find('\033'), std::string::npos);

  const auto json = run(machine.dir, {"duplicates", machine.work, "--min-size", "1", "--json"});
  ASSERT_EQ(json.exitStatus, 0) << json.standardError;
  std::set<std::string> paths;
  for (const auto& group : nlohmann::json::parse(json.standardOutput)) {
    for (const auto& file : group.at("files")) paths.insert(file.at("path").get<std::string>());
  }
  EXPECT_THAT(paths, ::testing::UnorderedElementsAre(machine.work + "/" + machine.forged,
                                                      machine.work + "/" + machine.coloured));

  // A link given to the shredder is refused by its name, on one line.
  machine.dir.symlink("work/l\nx", machine.work + "/" + machine.forged);
  const auto refused = run(machine.dir, {"shred", "--yes", machine.work + "/l\nx"});
  EXPECT_EQ(refused.exitStatus, 1);
  EXPECT_THAT(refused.standardError, HasSubstr("refused " + machine.work + "/l\\nx: "));
  EXPECT_EQ(readFile(machine.work + "/" + machine.forged), std::string(5000, 'x'));
}

TEST(CommandOutput, StatusTextsEscapeTheNamesTheyCarry) {
  Machine machine;
  machine.dir.file("home/Library/Caches/evil\nRemoving everything\033[2J/blob", 100);
  const auto cleaned = run(machine.dir, machine.clean({"--yes"}));
  ASSERT_EQ(cleaned.exitStatus, 0) << cleaned.standardError;
  EXPECT_THAT(cleaned.standardError, HasSubstr("Removing evil\\nRemoving everything\\033[2J..."));
  EXPECT_THAT(cleaned.standardError, Not(ContainsRegex("\nRemoving everything")));
  EXPECT_EQ(cleaned.standardError.find('\033'), std::string::npos);
}

TEST(CommandOutput, OutputThatCannotBeWrittenIsAFailureWithAMessage) {
  Machine machine;
  const int full = ::open("/dev/full", O_WRONLY | O_CLOEXEC);
  if (full < 0) GTEST_SKIP() << "no /dev/full here";
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"--version"}, {"analyze", machine.work}, {"scan", "--home", machine.home, "--root", machine.root},
        {"duplicates", machine.work, "--min-size", "1", "--json"}}) {
    const auto result = runWith(machine.dir, arguments, -1, full);
    EXPECT_EQ(result.exitStatus, 1) << arguments.front();
    EXPECT_THAT(result.standardError, HasSubstr("could not write the output: No space left on device"))
        << arguments.front();
    EXPECT_EQ(lineCount(result.standardError.substr(result.standardError.find("could not write"))), 1U);
  }
  ::close(full);
}

TEST(CommandOutput, AReaderThatLeftEndsTheRunQuietlyAndNeverAsASuccess) {
  Machine machine;
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"analyze", machine.work}, {"scan", "--home", machine.home, "--root", machine.root}}) {
    int ends[2];
    ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
    ::close(ends[0]); // the reader is gone before a byte is written
    const auto result = runWith(machine.dir, arguments, -1, ends[1]);
    ::close(ends[1]);
    EXPECT_EQ(result.signal, SIGPIPE) << arguments.front();
    EXPECT_THAT(result.standardError, Not(HasSubstr("could not write"))) << arguments.front();
  }
}

TEST(CommandExitStatus, NoTerminalWithoutYesIsOneWithOneLineAndTouchesNothing) {
  Machine machine;
  const auto before = treeSnapshot(machine.dir.path());
  for (const std::vector<std::string>& arguments :
       {machine.clean({}), {"shred", machine.work + "/" + machine.coloured}, {"duplicates", machine.work, "--min-size", "1", "--delete"}}) {
    const auto result = run(machine.dir, arguments);
    EXPECT_EQ(result.exitStatus, 1) << arguments.front();
    EXPECT_EQ(lineCount(result.standardError), 1U) << arguments.front() << ": " << result.standardError;
    EXPECT_THAT(result.standardError, HasSubstr("--yes")) << arguments.front();
  }
  EXPECT_EQ(treeSnapshot(machine.dir.path()), before);
}

TEST(CommandExitStatus, ADeclinedQuestionIsOneInEveryCommandAndTouchesNothing) {
  Machine machine;
  const auto before = treeSnapshot(machine.dir.path());
  for (const std::vector<std::string>& arguments :
       {machine.clean({}), {"shred", machine.work + "/" + machine.coloured}, {"duplicates", machine.work, "--min-size", "1", "--delete"}}) {
    const auto result = answering(machine.dir, arguments, "n\n");
    EXPECT_EQ(result.exitStatus, 1) << arguments.front() << ": " << result.standardError;
    EXPECT_THAT(result.standardError, HasSubstr("[y/N]")) << arguments.front();
    EXPECT_THAT(result.standardError, ContainsRegex("nothing was (removed|shredded|deleted)")) << arguments.front();
  }
  EXPECT_EQ(treeSnapshot(machine.dir.path()), before);
}

TEST(CommandExitStatus, UsageErrorsAreTwoInEveryCommand) {
  Machine machine;
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"scan", "--bogus"}, machine.clean({"--bogus"}), {"shred", "--bogus", machine.work},
        {"duplicates", machine.work, "--bogus"}, {"analyze", machine.work, "--bogus"}, {"nosuchcommand"}}) {
    EXPECT_EQ(run(machine.dir, arguments).exitStatus, 2) << arguments.front();
  }
}

TEST(CleanCommandOnly, ANameThatIsNoCategoryOrAProtectedOneIsAUsageErrorNotNothingToClean) {
  Machine machine;
  const auto before = treeSnapshot(machine.dir.path());
  const auto unknown = run(machine.dir, machine.clean({"--yes", "--only", "Usr Caches"}));
  EXPECT_EQ(unknown.exitStatus, 2);
  EXPECT_THAT(unknown.standardError, HasSubstr("\"Usr Caches\": no category has this name"));
  EXPECT_THAT(unknown.standardOutput, Not(HasSubstr("Nothing to clean")));
  const auto protectedOne = run(machine.dir, machine.clean({"--yes", "--only", "User Caches", "--only", "Downloads"}));
  EXPECT_EQ(protectedOne.exitStatus, 2);
  EXPECT_THAT(protectedOne.standardError, HasSubstr("\"Downloads\": a protected category"));
  EXPECT_EQ(treeSnapshot(machine.dir.path()), before);

  // A real category this scan found nothing in is honestly nothing to clean; the Trash answers
  // to its name without the count.
  const auto empty = run(machine.dir, machine.clean({"--yes", "--only", "Trash", "--only", "npm Cache"}));
  EXPECT_EQ(empty.exitStatus, 0) << empty.standardError;
  EXPECT_THAT(empty.standardOutput, HasSubstr("Nothing to clean."));
}

TEST(AnalyzeCommandStatus, AFolderThatCannotBeReadIsAFailureAndCountsAreSingularForOne) {
  Machine machine;
  const std::string one = machine.dir.mkdir("one");
  machine.dir.file("one/only.txt", 10);
  const auto single = run(machine.dir, {"analyze", one});
  ASSERT_EQ(single.exitStatus, 0) << single.standardError;
  EXPECT_THAT(single.standardOutput, HasSubstr(" in 1 file and "));
  EXPECT_THAT(single.standardOutput, Not(ContainsRegex("\\b1 (files|folders|items)\\b")));

  // Root reads every folder: as root, halcyra runs as nobody through setpriv.
  std::vector<std::string> launcher;
  if (::geteuid() == 0) {
    if (::access("/usr/bin/setpriv", X_OK) != 0) GTEST_SKIP() << "root reads every folder, and there is no setpriv";
    launcher = {"/usr/bin/setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"};
    ASSERT_EQ(::chmod(machine.dir.path().c_str(), 0755), 0);
  }
  const std::string locked = machine.dir.mkdir("locked");
  ASSERT_EQ(::chmod(locked.c_str(), 0), 0);
  const auto denied = runWith(machine.dir, {"analyze", locked}, -1, -1, launcher);
  const auto deniedJson = runWith(machine.dir, {"analyze", locked, "--json"}, -1, -1, launcher);
  ::chmod(locked.c_str(), 0700);
  EXPECT_EQ(denied.exitStatus, 1);
  EXPECT_THAT(denied.standardError, HasSubstr("could not be read"));
  EXPECT_EQ(deniedJson.exitStatus, 1);
  EXPECT_TRUE(nlohmann::json::accept(deniedJson.standardOutput)); // the result is still whole
}
