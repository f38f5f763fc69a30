#include "platform/OsascriptPrivilegedRunner.h"

#include "core/Utf8.h"
#include "platform/AppleScript.h"
#include "platform/ShellQuoting.h"

namespace halcyra::platform {

bool OsascriptPrivilegedRunner::runShellLine(const std::string& line) {
  if (line.find('\0') != std::string::npos || !core::isValidUtf8(line)) return false;
  // A declined prompt, a wrong password and a failed command all end osascript with a
  // non-zero status, and all count as "not granted".
  return runAppleScript(*runner_, administratorScript(line)).has_value();
}

PrivilegedOutput OsascriptPrivilegedRunner::runHelper(const std::vector<std::string>& arguments) {
  std::string line = shellQuote(helperPath_);
  for (const auto& argument : arguments) {
    line += ' ';
    line += shellQuote(argument);
  }
  if (line.find('\0') != std::string::npos || !core::isValidUtf8(line)) return {};
  // The helper's report is the script's result; its line feeds are kept as they are.
  auto result = runAppleScript(*runner_, administratorScript(line) + " without altering line endings");
  if (!result) return {};
  return PrivilegedOutput{true, std::move(*result)};
}

} // namespace halcyra::platform
