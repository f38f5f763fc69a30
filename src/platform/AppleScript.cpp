#include "platform/AppleScript.h"

#include "core/Utf8.h"
#include "platform/ProcessRunner.h"

namespace halcyra::platform {

std::optional<std::string> runAppleScript(ProcessRunner& runner, const std::string& source) {
  ProcessOutput output = runner.run("/usr/bin/osascript", {"-e", source}, std::nullopt);
  if (!output.launched || output.timedOut || output.exitStatus != 0) return std::nullopt;
  if (!core::isValidUtf8(output.standardOutput)) return std::nullopt;
  return std::move(output.standardOutput);
}

} // namespace halcyra::platform
