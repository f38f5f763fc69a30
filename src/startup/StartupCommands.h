#pragma once

#include <string>
#include <string_view>

namespace halcyra::startup {

// The texts of the commands that read and switch startup items. A name, a path or a label is
// always data here: inside an AppleScript it is one string literal, inside a shell line one
// single-quoted word, whatever characters it holds. A value that no command can carry (a NUL
// byte, or for AppleScript bytes that are not UTF-8) is refused with std::invalid_argument.

/// The nine-line script that lists System Events' login items, one "name TAB path" line each.
std::string loginItemListScript();

/// `value` as an AppleScript string literal, quotes included.
std::string appleScriptStringLiteral(std::string_view value);

/// Adds the application at `path` to the login items (`enable`), or deletes the login item
/// called `name`.
std::string loginItemSwitchScript(std::string_view name, std::string_view path, bool enable);

/// The shell line that switches a system launchd job in one go, both commands whatever the
/// first gives: "<launchctl> <sub> '<domain>/<label>' 2>&1; <launchctl> <boot> '<domain>'
/// '<plistPath>' 2>&1". `launchctl` is the tool's fixed path.
std::string launchctlSwitchLine(std::string_view launchctl, std::string_view domain, std::string_view label,
                                std::string_view plistPath, bool enable);

/// The shell line that switches a system service: "<systemctl> enable|disable --now -- '<unit>' 2>&1".
std::string systemctlSwitchLine(std::string_view systemctl, std::string_view unit, bool enable);

} // namespace halcyra::startup
