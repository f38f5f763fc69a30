#include "platform/ShellQuoting.h"

namespace halcyra::platform {

std::string shellQuote(std::string_view path) {
  std::string quoted = "'";
  for (const char c : path) {
    if (c == '\'') quoted += "'\\''";
    else quoted.push_back(c);
  }
  quoted.push_back('\'');
  return quoted;
}

// Inside an AppleScript string literal a backslash starts an escape and a double quote ends the
// literal. Escaping each of them where it stands is the same as doubling the backslashes first
// and escaping the quotes second, and leaves no byte that could end the literal early.
std::string appleScriptEscape(std::string_view shellLine) {
  std::string escaped;
  escaped.reserve(shellLine.size());
  for (const char c : shellLine) {
    if (c == '\\' || c == '"') escaped.push_back('\\');
    escaped.push_back(c);
  }
  return escaped;
}

std::string administratorScript(std::string_view shellLine) {
  return "do shell script \"" + appleScriptEscape(shellLine) + "\" with administrator privileges";
}

} // namespace halcyra::platform
