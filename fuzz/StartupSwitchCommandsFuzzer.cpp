// The switch commands: a label, path or name is data. In the administrator's shell line each
// value is exactly one word and nothing else is syntax but the fixed "2>&1" and ";"; in an
// AppleScript each value is one literal that gives back its text. Input: label NUL path.
#include <optional>
#include <stdexcept>

#include "FuzzInput.h"
#include "PosixWords.h"
#include "core/Utf8.h"
#include "startup/StartupCommands.h"

using namespace halcyra;

namespace {

// The words of a line made of quoted words, with the fixed redirection and separator as words
// of their own: anything else outside quotes that a shell would read as syntax gives none.
std::optional<std::vector<std::string>> switchLineWords(const std::string& line) {
  std::vector<std::string> words;
  std::string piece;
  const auto flush = [&]() -> bool {
    if (piece.empty()) return true;
    if (piece == "2>&1") {
      words.push_back(piece);
    } else {
      const auto parsed = fuzz::posixWords(piece);
      if (!parsed || parsed->size() != 1) return false;
      words.push_back(parsed->front());
    }
    piece.clear();
    return true;
  };
  for (std::size_t i = 0; i < line.size(); ++i) {
    const char c = line[i];
    if (c == '\'') {
      const auto close = line.find('\'', i + 1);
      if (close == std::string::npos) return std::nullopt;
      piece.append(line, i, close - i + 1);
      i = close;
    } else if (c == '\\' && i + 1 < line.size()) {
      piece.append(line, i, 2);
      ++i;
    } else if (c == ' ' || c == ';') {
      if (!flush()) return std::nullopt;
      if (c == ';') words.emplace_back(";");
    } else {
      piece.push_back(c);
    }
  }
  if (!flush()) return std::nullopt;
  return words;
}

std::optional<std::pair<std::string, std::size_t>> literalValue(const std::string& text, std::size_t start) {
  if (start >= text.size() || text[start] != '"') return std::nullopt;
  std::string value;
  for (std::size_t i = start + 1; i < text.size(); ++i) {
    if (text[i] == '"') return std::pair{value, i + 1};
    if (text[i] == '\\') {
      if (++i >= text.size() || (text[i] != '"' && text[i] != '\\')) return std::nullopt;
    }
    value.push_back(text[i]);
  }
  return std::nullopt;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto [label, path] = fuzz::parameterAndText(fuzz::text(data, size));

  for (const bool enable : {true, false}) {
    std::string line;
    try {
      line = startup::launchctlSwitchLine("/bin/launchctl", "system", label, path, enable);
    } catch (const std::invalid_argument&) {
      fuzz::require(path.find('\0') != std::string::npos, "only a NUL byte is refused from a shell line");
      continue;
    }
    const std::vector<std::string> expected{"/bin/launchctl", enable ? "enable" : "disable", "system/" + label,
                                            "2>&1", ";", "/bin/launchctl", enable ? "bootstrap" : "bootout",
                                            "system", path, "2>&1"};
    const auto words = switchLineWords(line);
    fuzz::require(words.has_value() && *words == expected, "each value of the line is one word of data");

    const auto service = switchLineWords(startup::systemctlSwitchLine("/usr/bin/systemctl", path, enable));
    fuzz::require(service.has_value() && service->at(4) == path && service->size() == 6,
                  "the unit is one word of data");
  }

  const bool carriable = path.find('\0') == std::string::npos && core::isValidUtf8(path);
  const std::string heads[] = {"tell application \"System Events\" to delete login item ",
                               "tell application \"System Events\" to make login item at end with properties {path:"};
  for (const bool enable : {false, true}) {
    std::string script;
    try {
      script = enable ? startup::loginItemSwitchScript("unused", path, true)
                      : startup::loginItemSwitchScript(path, "/unused", false);
    } catch (const std::invalid_argument&) {
      fuzz::require(!carriable, "only what AppleScript cannot carry is refused");
      continue;
    }
    fuzz::require(carriable, "a value AppleScript cannot carry is refused");
    const std::string& head = heads[enable ? 1 : 0];
    fuzz::require(script.starts_with(head), "the script starts with its command");
    const auto literal = literalValue(script, head.size());
    fuzz::require(literal.has_value() && literal->first == path, "the value is one literal of its own text");
    fuzz::require(script.substr(literal->second) == (enable ? ", hidden:false}" : ""),
                  "nothing but the fixed words follows the literal");
  }
  return 0;
}
