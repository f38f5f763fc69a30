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

PrivilegedOutput PkexecPrivilegedRunner::runHelper(const std::vector<std::string>& arguments) {
  for (const auto& argument : arguments) {
    if (argument.find('\0') != std::string::npos) return {};
  }
  std::vector<std::string> words;
  words.reserve(arguments.size() + 1);
  words.push_back(helperPath_);
  words.insert(words.end(), arguments.begin(), arguments.end());
  // The helper ends with 0 whenever it has reported on every item; 126 and 127 are pkexec's
  // own refusals.
  ProcessOutput output = runner_->run("/usr/bin/pkexec", words, std::nullopt);
  PrivilegedOutput result;
  result.granted = output.launched && !output.timedOut && output.exitStatus == 0;
  if (result.granted) result.output = std::move(output.standardOutput);
  return result;
}

} // namespace halcyra::platform
