#include "platform/PkexecPrivilegedRunner.h"

#include "platform/ProcessRunner.h"

namespace halcyra::platform {

bool PkexecPrivilegedRunner::runShellLine(const std::string& line) {
  // An argument ends at its first NUL byte: such a line would run cut short.
  if (line.find('\0') != std::string::npos) return false;
  // No time limit: the prompt stays open as long as the user needs. pkexec ends with 126 when
  // the prompt is dismissed and 127 when the user is not authorised; a missing pkexec does not
  // launch. All of these, and a failed command, count as "not granted".
  const ProcessOutput output = runner_->run("/usr/bin/pkexec", {"/bin/sh", "-c", line}, std::nullopt);
  return output.launched && !output.timedOut && output.exitStatus == 0;
}

} // namespace halcyra::platform
