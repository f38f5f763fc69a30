#include "startup/StartupCommands.h"

#include <stdexcept>

#include "core/Utf8.h"
#include "platform/ShellQuoting.h"

namespace halcyra::startup {
namespace {

void refuseNul(std::string_view value) {
  // An argument ends at its first NUL byte: the command would run with a value cut short.
  if (value.find('\0') != std::string_view::npos) throw std::invalid_argument("a value holds a NUL byte");
}

} // namespace

std::string loginItemListScript() {
  return "tell application \"System Events\"\n"
         "    set itemNames to name of every login item\n"
         "    set itemPaths to path of every login item\n"
         "    set output to \"\"\n"
         "    repeat with i from 1 to count of itemNames\n"
         "        set output to output & item i of itemNames & \"\t\" & item i of itemPaths & \"\n\"\n"
         "    end repeat\n"
         "    return output\n"
         "end tell";
}

std::string appleScriptStringLiteral(std::string_view value) {
  refuseNul(value);
  // AppleScript text is Unicode: a byte it cannot carry would name another item.
  if (!core::isValidUtf8(value)) throw std::invalid_argument("a value is not UTF-8");
  return "\"" + platform::appleScriptEscape(value) + "\"";
}

std::string loginItemSwitchScript(std::string_view name, std::string_view path, bool enable) {
  if (enable) {
    return "tell application \"System Events\" to make login item at end with properties {path:" +
           appleScriptStringLiteral(path) + ", hidden:false}";
  }
  return "tell application \"System Events\" to delete login item " + appleScriptStringLiteral(name);
}

std::string launchctlSwitchLine(std::string_view launchctl, std::string_view domain, std::string_view label,
                                std::string_view plistPath, bool enable) {
  refuseNul(domain);
  refuseNul(label);
  refuseNul(plistPath);
  const std::string tool(launchctl);
  const std::string target = std::string(domain) + "/" + std::string(label);
  return tool + (enable ? " enable " : " disable ") + platform::shellQuote(target) + " 2>&1; " + tool +
         (enable ? " bootstrap " : " bootout ") + platform::shellQuote(domain) + " " + platform::shellQuote(plistPath) +
         " 2>&1";
}

std::string systemctlSwitchLine(std::string_view systemctl, std::string_view unit, bool enable) {
  refuseNul(unit);
  // "--" ends the options: a unit called "-x" stays a unit.
  return std::string(systemctl) + (enable ? " enable" : " disable") + " --now -- " + platform::shellQuote(unit) +
         " 2>&1";
}

} // namespace halcyra::startup
