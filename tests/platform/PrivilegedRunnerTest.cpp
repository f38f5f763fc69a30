#include <gtest/gtest.h>

#include <memory>

#include "platform/OsascriptPrivilegedRunner.h"
#include "platform/PkexecPrivilegedRunner.h"
#include "platform/ProcessRunner.h"
#include "platform/ShellQuoting.h"
#include "support/TempDir.h"

using namespace halcyra::platform;
using halcyra::testing::existsNoFollow;
using halcyra::testing::readFile;
using halcyra::testing::TempDir;

namespace {

std::shared_ptr<ProcessRunner> runnerWith(const std::string& tool, const std::string& standIn) {
  return std::make_shared<SystemProcessRunner>(std::map<std::string, std::string>{{tool, standIn}});
}

} // namespace

TEST(PkexecPrivilegedRunner, RunsTheLineAsOneShellArgumentAndGrantsOnlyOnSuccess) {
  TempDir dir;
  // Stands in for pkexec: insists on exactly "/bin/sh -c <line>", then runs it.
  const auto pkexec = dir.script("pkexec", "[ \"$#\" = 3 ] && [ \"$1\" = /bin/sh ] && [ \"$2\" = -c ] || exit 99\n"
                                           "exec \"$@\"");
  PkexecPrivilegedRunner runner(runnerWith("/usr/bin/pkexec", pkexec));
  const auto victim = dir.file("it's \"here\"", 1);
  EXPECT_TRUE(runner.runShellLine("rm -rf " + shellQuote(victim)));
  EXPECT_FALSE(existsNoFollow(victim));
  EXPECT_FALSE(runner.runShellLine("exit 3"));
  EXPECT_FALSE(runner.runShellLine(std::string("true\0; false", 12)));

  // A dismissed prompt (126), a user without the right (127) and a missing pkexec look alike.
  PkexecPrivilegedRunner dismissed(runnerWith("/usr/bin/pkexec", dir.script("dismissed", "exit 126")));
  EXPECT_FALSE(dismissed.runShellLine("true"));
  PkexecPrivilegedRunner missing(runnerWith("/usr/bin/pkexec", dir / "no-such-pkexec"));
  EXPECT_FALSE(missing.runShellLine("true"));
}

TEST(OsascriptPrivilegedRunner, HandsOsascriptTheAdministratorScriptAndRefusesTextItCannotCarry) {
  TempDir dir;
  const auto received = dir / "received";
  const auto osascript = dir.script("osascript", "[ \"$#\" = 2 ] && [ \"$1\" = -e ] || exit 99\n"
                                                 "printf '%s' \"$2\" > '" + received + "'");
  OsascriptPrivilegedRunner runner(runnerWith("/usr/bin/osascript", osascript));
  const std::string line = "rm -rf " + shellQuote("/Library/Caches/say \"it's\" \\ done");
  EXPECT_TRUE(runner.runShellLine(line));
  EXPECT_EQ(readFile(received), administratorScript(line));

  ::unlink(received.c_str());
  EXPECT_FALSE(runner.runShellLine("rm -rf " + shellQuote("/Library/Caches/\xff\xfe")));
  EXPECT_FALSE(existsNoFollow(received)); // refused before any prompt

  OsascriptPrivilegedRunner declined(runnerWith("/usr/bin/osascript", dir.script("declined", "exit 1")));
  EXPECT_FALSE(declined.runShellLine(line));
}

TEST(OsascriptPrivilegedRunner, RunsTheHelperWithEveryArgumentQuotedAndReturnsItsReport) {
  TempDir dir;
  const auto received = dir / "received";
  const auto osascript = dir.script("osascript", "printf '%s' \"$2\" > '" + received + "'\nprintf '0 removed\\n'");
  OsascriptPrivilegedRunner runner(runnerWith("/usr/bin/osascript", osascript), "/Applications/Halcyra.app/halcyra-helper");
  const PrivilegedOutput output = runner.runHelper({"remove", "1:2:3:4", "/Library/it's \"x\""});
  EXPECT_TRUE(output.granted);
  EXPECT_EQ(output.output, "0 removed\n");
  EXPECT_EQ(readFile(received),
            administratorScript("'/Applications/Halcyra.app/halcyra-helper' 'remove' '1:2:3:4' '/Library/it'\\''s \"x\"'") +
                " without altering line endings");
  EXPECT_FALSE(runner.runHelper({"remove", "1:2:3:4", "/Library/\xff"}).granted);
}
