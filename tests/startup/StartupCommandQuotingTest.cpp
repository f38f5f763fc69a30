#include <gtest/gtest.h>

#include <chrono>
#include <random>

#include "platform/ProcessRunner.h"
#include "platform/ShellQuoting.h"
#include "startup/StartupCommands.h"

namespace halcyra::startup {
namespace {

// Values built from the pieces that break naive quoting, at random but from a fixed seed.
std::vector<std::string> hostileValues(std::size_t count) {
  static const std::vector<std::string> pieces{
      "\"", "'", ";", "$(touch /tmp/pwn)", " ", "\n", "\\", "`id`", "&", "|", "-rf", "--", "é", "2>&1", "'\"'\"'",
      "\\\"", "\t", "*", "x$HOME", "\r", "com.acme", "/Library/LaunchDaemons/", "do shell script \"id\""};
  std::mt19937 random(20261123);
  std::vector<std::string> values;
  for (std::size_t i = 0; i < count; ++i) {
    std::string value;
    const std::size_t length = 1 + random() % 6;
    for (std::size_t j = 0; j < length; ++j) value += pieces[random() % pieces.size()];
    values.push_back(value);
  }
  return values;
}

// A POSIX shell's split of a line into words, for the quoting the builders use: single quotes,
// double quotes with their escapes, backslashes, and ";" as a word of its own.
std::vector<std::string> shellWords(const std::string& line) {
  std::vector<std::string> words;
  std::string word;
  bool inWord = false;
  for (std::size_t i = 0; i < line.size(); ++i) {
    const char c = line[i];
    if (c == '\'') {
      const auto end = line.find('\'', i + 1);
      if (end == std::string::npos) throw std::runtime_error("unterminated single quote");
      word += line.substr(i + 1, end - i - 1);
      i = end;
      inWord = true;
    } else if (c == '\\' && i + 1 < line.size()) {
      word += line[++i];
      inWord = true;
    } else if (c == ' ' || c == '\t' || c == '\n' || c == ';') {
      if (inWord) words.push_back(word);
      word.clear();
      inWord = false;
      if (c == ';' || c == '\n') words.push_back(";");
    } else if (c == '"' || c == '$' || c == '`' || c == '|' || c == '&' || c == '<' || c == '*' || c == '?') {
      // Outside quotes these would be read as shell syntax; "2>&1" is the one place one may stand.
      if (line.compare(i - 1, 4, "2>&1") != 0 && line.compare(i - 2, 4, "2>&1") != 0) {
        throw std::runtime_error("shell syntax outside quotes at " + std::to_string(i));
      }
      word += c;
      inWord = true;
    } else {
      word += c;
      inWord = true;
    }
  }
  if (inWord) words.push_back(word);
  return words;
}

// The text of the AppleScript string literal that starts at `start` (a double quote), and
// where it ends.
std::pair<std::string, std::size_t> appleScriptLiteral(const std::string& script, std::size_t start) {
  if (script.at(start) != '"') throw std::runtime_error("no literal here");
  std::string text;
  for (std::size_t i = start + 1; i < script.size(); ++i) {
    if (script[i] == '"') return {text, i + 1};
    if (script[i] == '\\') {
      const char next = script.at(++i);
      if (next == 'n') text += '\n';
      else if (next == 't') text += '\t';
      else if (next == 'r') text += '\r';
      else text += next;
    } else {
      text += script[i];
    }
  }
  throw std::runtime_error("unterminated literal");
}

TEST(SwitchQuoting, EveryValueOfTheAdministratorLineIsOneWord) {
  for (const auto& label : hostileValues(300)) {
    const std::string plist = "/Library/LaunchDaemons/" + label + ".plist";
    const std::string line = launchctlSwitchLine("/bin/launchctl", "system", label, plist, true);
    const std::vector<std::string> expected{"/bin/launchctl", "enable",    "system/" + label, "2>&1", ";",
                                            "/bin/launchctl", "bootstrap", "system",          plist,  "2>&1"};
    EXPECT_EQ(shellWords(line), expected) << line;

    // The script that carries the line gives the line back, unchanged, as its one literal.
    const std::string script = platform::administratorScript(line);
    const std::string head = "do shell script ";
    ASSERT_EQ(script.substr(0, head.size()), head);
    const auto [text, end] = appleScriptLiteral(script, head.size());
    EXPECT_EQ(text, line);
    EXPECT_EQ(script.substr(end), " with administrator privileges");

    const std::vector<std::string> service{"/usr/bin/systemctl", "disable", "--now", "--", label, "2>&1"};
    EXPECT_EQ(shellWords(systemctlSwitchLine("/usr/bin/systemctl", label, false)), service);
  }
}

TEST(SwitchQuoting, TheShellItselfPassesEachValueAsData) {
  platform::SystemProcessRunner runner;
  for (const auto& label : hostileValues(40)) {
    const std::string plist = "/tmp/" + label;
    // printf stands in for launchctl: it prints back each argument the shell gave it.
    const std::string line = launchctlSwitchLine("/usr/bin/printf '<%s>'", "system", label, plist, false);
    const auto output = runner.run("/bin/sh", {"-c", line}, std::chrono::seconds(10));
    EXPECT_EQ(output.standardOutput, "<disable><system/" + label + "><bootout><system><" + plist + ">") << line;
  }
}

TEST(SwitchQuoting, LoginItemScriptsHoldNameAndPathAsOneLiteral) {
  for (const auto& value : hostileValues(300)) {
    const std::string off = loginItemSwitchScript(value, "/unused", false);
    const std::string offHead = "tell application \"System Events\" to delete login item ";
    ASSERT_EQ(off.substr(0, offHead.size()), offHead);
    const auto [name, nameEnd] = appleScriptLiteral(off, offHead.size());
    EXPECT_EQ(name, value);
    EXPECT_EQ(nameEnd, off.size());

    const std::string on = loginItemSwitchScript("unused", value, true);
    const std::string onHead = "tell application \"System Events\" to make login item at end with properties {path:";
    ASSERT_EQ(on.substr(0, onHead.size()), onHead);
    const auto [path, pathEnd] = appleScriptLiteral(on, onHead.size());
    EXPECT_EQ(path, value);
    EXPECT_EQ(on.substr(pathEnd), ", hidden:false}");
  }
}

TEST(SwitchQuoting, ValuesNoCommandCanCarryAreRefused) {
  EXPECT_THROW(loginItemSwitchScript(std::string("a\0b", 3), "/x", false), std::invalid_argument);
  EXPECT_THROW(loginItemSwitchScript("x", "/Applications/\xff.app", true), std::invalid_argument);
  EXPECT_THROW(launchctlSwitchLine("/bin/launchctl", "system", std::string("a\0b", 3), "/p", true), std::invalid_argument);
  EXPECT_THROW(systemctlSwitchLine("/usr/bin/systemctl", std::string("a\0.service", 10), true), std::invalid_argument);
}

} // namespace
} // namespace halcyra::startup
