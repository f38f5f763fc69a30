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

std::string removalShellLine(const std::vector<std::string>& paths) {
  std::string line;
  for (const auto& path : paths) {
    if (!line.empty()) line += " && ";
    line += "rm -rf " + shellQuote(path);
  }
  return line;
}

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
