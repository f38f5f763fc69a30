#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace halcyra::platform {

/// The path as one single-quoted shell word: every `'` becomes `'\''`. Any byte, a newline
/// or an invalid UTF-8 byte included, reaches the command unchanged as one argument.
std::string shellQuote(std::string_view path);

/// "rm -rf '<p1>' && rm -rf '<p2>' ...", in the given order, each path quoted with shellQuote.
/// Every path must pass isPlainAbsolutePath (SafeRemove.h), or std::invalid_argument is thrown
/// and no line is made: starting with "/", no path can be taken for an option of rm; without a
/// NUL byte, none is cut short on its way to the shell; without a trailing slash, rm cannot
/// reach through a link to empty its target.
std::string removalShellLine(const std::vector<std::string>& paths);

/// The shell line as the inside of an AppleScript string literal: backslash first, then the
/// double quote, each escaped with a backslash.
std::string appleScriptEscape(std::string_view shellLine);

/// "do shell script \"<escaped line>\" with administrator privileges".
std::string administratorScript(std::string_view shellLine);

} // namespace halcyra::platform
