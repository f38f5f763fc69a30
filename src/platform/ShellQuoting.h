#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace halcyra::platform {

/// The path as one single-quoted shell word: every `'` becomes `'\''`. Any byte, a newline
/// or an invalid UTF-8 byte included, reaches the command unchanged as one argument.
std::string shellQuote(std::string_view path);

/// The shell line as the inside of an AppleScript string literal: backslash first, then the
/// double quote, each escaped with a backslash.
std::string appleScriptEscape(std::string_view shellLine);

/// "do shell script \"<escaped line>\" with administrator privileges".
std::string administratorScript(std::string_view shellLine);

} // namespace halcyra::platform
