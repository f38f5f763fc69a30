#include "platform/PkexecPrivilegedRunner.h"

#include "platform/ProcessRunner.h"

namespace halcyra::platform {

bool PkexecPrivilegedRunner::runShellLine(const std::string& line) {
  // No time limit: the prompt stays open as long as the user needs.
  const ProcessOutput output = runner_->run("/usr/bin/pkexec", {"/bin/sh", "-c", line}, std::nullopt);
  return output.launched && !output.timedOut && output.exitStatus == 0;
}

} // namespace halcyra::platform
