// The administrator script holds the shell line as one AppleScript string literal whose value
// is exactly that line, and nothing after the literal but the fixed words.
#include <optional>

#include "FuzzInput.h"
#include "platform/ShellQuoting.h"

using namespace halcyra;

namespace {

// The value of the string literal starting at `text[start]` (a double quote) and the position
// after its closing quote, by AppleScript's escapes: \" \\ \t \r \n. Any other escape does not
// compile, and an unclosed literal has no value.
std::optional<std::pair<std::string, std::size_t>> literalValue(const std::string& text, std::size_t start) {
  if (start >= text.size() || text[start] != '"') return std::nullopt;
  std::string value;
  for (std::size_t i = start + 1; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '"') return std::pair{value, i + 1};
    if (c != '\\') {
      value.push_back(c);
      continue;
    }
    if (++i >= text.size()) return std::nullopt;
    switch (text[i]) {
    case '"': value.push_back('"'); break;
    case '\\': value.push_back('\\'); break;
    case 't': value.push_back('\t'); break;
    case 'r': value.push_back('\r'); break;
    case 'n': value.push_back('\n'); break;
    default: return std::nullopt;
    }
  }
  return std::nullopt;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string line = fuzz::text(data, size);
  const std::string script = platform::administratorScript(line);

  const std::string head = "do shell script ";
  fuzz::require(script.starts_with(head), "the script starts with the command");
  const auto literal = literalValue(script, head.size());
  fuzz::require(literal.has_value(), "the escaped line is one well-formed literal");
  fuzz::require(literal->first == line, "the literal's value is the line itself");
  fuzz::require(script.substr(literal->second) == " with administrator privileges",
                "nothing but the fixed words follows the literal");
  return 0;
}
