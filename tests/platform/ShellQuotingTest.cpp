#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <random>
#include <stdexcept>

#include "platform/ProcessRunner.h"
#include "platform/ShellQuoting.h"

using namespace halcyra::platform;

namespace {

// A shell line of the kind the administrator prompt runs: "rm -rf '<p1>' && rm -rf '<p2>'".
std::string removalLine(const std::vector<std::string>& paths) {
  std::string line;
  for (const auto& path : paths) {
    if (!line.empty()) line += " && ";
    line += "rm -rf " + shellQuote(path);
  }
  return line;
}

// Names that have broken quoting somewhere: quotes of both kinds, escapes, substitutions,
// option look-alikes, line breaks, glob characters and bytes that are not UTF-8.
const std::vector<std::string> kHostileNames = {
    "a'b", "a\"b", "a\\b", "a\\\"b", "a\\\\\"b", "'\"'\"'", "$(touch pwned)", "`id`", "x$HOME", "${IFS}",
    "l1\nl2", "cr\r", "tab\t", "-rf", "--", "-", " lead", "trail ", "*", "?", "[a]", "~", "!", ";", "&", "|",
    ">x", "%s%n", "\xff\xfe", "caf\xc3\xa9", "e\xcc\x81", "\xe2\x80\xae" "gpj.exe", "'",  "\\", "\"",
};

// A random name of bytes 1 to 255 other than "/", weighted towards the characters that matter
// to a shell or to AppleScript, sometimes with a leading "-".
std::string randomName(std::mt19937& random) {
  static const std::string special = "'\"\\$`\n\r\t -;&|*?[]~!()<>{}#=%^";
  std::uniform_int_distribution<int> length(1, 16);
  std::uniform_int_distribution<int> coin(0, 3);
  std::uniform_int_distribution<int> anyByte(1, 255);
  std::uniform_int_distribution<std::size_t> pick(0, special.size() - 1);
  std::string name;
  do {
    name.clear();
    if (coin(random) == 0) name.push_back('-');
    for (int i = length(random); i > 0; --i) {
      if (coin(random) == 0) {
        const int byte = anyByte(random);
        name.push_back(byte == '/' ? '\\' : static_cast<char>(byte));
      } else {
        name.push_back(special[pick(random)]);
      }
    }
  } while (name == "." || name == "..");
  return name;
}

std::string randomPath(std::mt19937& random) {
  std::uniform_int_distribution<int> depth(1, 4);
  std::string path;
  for (int i = depth(random); i > 0; --i) path += "/" + randomName(random);
  return path;
}

// Runs the line through a real /bin/sh in which `rm` is a stand-in that prints "rm" and then
// each argument it was given, every one ended by a NUL byte.
std::string argumentsSeenByRm(const std::string& line) {
  SystemProcessRunner processes;
  const std::string standIn = "rm() { printf 'rm\\0'; for a in \"$@\"; do printf '%s\\0' \"$a\"; done; }; ";
  const ProcessOutput output = processes.run("/bin/sh", {"-c", standIn + line}, std::chrono::seconds(30));
  EXPECT_EQ(output.exitStatus, 0) << output.standardError;
  return output.standardOutput;
}

std::string expectedArguments(const std::vector<std::string>& paths) {
  std::string expected;
  for (const auto& path : paths) expected += std::string("rm\0-rf\0", 7) + path + std::string(1, '\0');
  return expected;
}

// Reads a script the way AppleScript reads its string literal, with the escapes AppleScript
// knows; none when the literal would end early or holds an escape it does not know.
std::optional<std::string> shellLineInScript(const std::string& script) {
  const std::string head = "do shell script \"";
  const std::string tail = "\" with administrator privileges";
  if (script.size() < head.size() + tail.size() || !script.starts_with(head) || !script.ends_with(tail)) {
    return std::nullopt;
  }
  const std::string body = script.substr(head.size(), script.size() - head.size() - tail.size());
  std::string line;
  for (std::size_t i = 0; i < body.size(); ++i) {
    const char c = body[i];
    if (c == '"') return std::nullopt;
    if (c != '\\') {
      line.push_back(c);
      continue;
    }
    if (++i == body.size()) return std::nullopt;
    switch (body[i]) {
    case '\\': line.push_back('\\'); break;
    case '"': line.push_back('"'); break;
    case 'n': line.push_back('\n'); break;
    case 'r': line.push_back('\r'); break;
    case 't': line.push_back('\t'); break;
    default: return std::nullopt;
    }
  }
  return line;
}

} // namespace

TEST(ShellQuoting, WritesTheLineAndScriptInTheDocumentedForm) {
  EXPECT_EQ(shellQuote("it's"), "'it'\\''s'");
  EXPECT_EQ(removalLine({"/Library/Caches/it's"}), "rm -rf '/Library/Caches/it'\\''s'");
  EXPECT_EQ(removalLine({"/a b", "/c", "/d"}), "rm -rf '/a b' && rm -rf '/c' && rm -rf '/d'");
  EXPECT_EQ(removalLine({}), "");
  // The single quote is handled in the shell line first; in the script text the backslash of
  // its '\'' is then doubled, and the double quote escaped.
  EXPECT_EQ(administratorScript(removalLine({"/x/say \"it's\""})),
            "do shell script \"rm -rf '/x/say \\\"it'\\\\''s\\\"'\" with administrator privileges");
  EXPECT_EQ(appleScriptEscape("a\\\"b"), "a\\\\\\\"b");
}

TEST(ShellQuoting, EveryHostilePathReachesRmAsExactlyOneUnchangedArgument) {
  std::vector<std::vector<std::string>> batches;
  std::vector<std::string> corpus;
  for (const auto& name : kHostileNames) corpus.push_back("/tmp/" + name + "/" + name);
  batches.push_back(corpus);
  std::mt19937 random(20240611);
  std::uniform_int_distribution<int> batchSize(1, 4);
  for (int i = 0; i < 150; ++i) {
    std::vector<std::string> paths;
    for (int n = batchSize(random); n > 0; --n) paths.push_back(randomPath(random));
    batches.push_back(std::move(paths));
  }

  for (const auto& paths : batches) {
    const std::string line = removalLine(paths);
    ASSERT_EQ(argumentsSeenByRm(line), expectedArguments(paths)) << line;
    ASSERT_EQ(shellLineInScript(administratorScript(line)), line) << line;
  }
}
