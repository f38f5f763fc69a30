#pragma once

#include <optional>
#include <string>

namespace halcyra::platform {

class ProcessRunner;

/// Runs an AppleScript through "/usr/bin/osascript -e", waiting as long as it takes (a password
/// prompt may be open). None when it could not start, exited with a non-zero status, or wrote
/// something that is not UTF-8; an empty answer is a success.
std::optional<std::string> runAppleScript(ProcessRunner& runner, const std::string& source);

} // namespace halcyra::platform
