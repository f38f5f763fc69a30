#include "platform/Workspace.h"

#include <chrono>
#include <sys/stat.h>

#include "platform/AppleScript.h"
#include "platform/ProcessRunner.h"
#include "platform/ShellQuoting.h"

namespace halcyra::platform {

TrashOutcome FinderWorkspace::moveToTrash(const std::string& path) {
  TrashOutcome outcome;
  struct stat info {};
  if (::lstat(path.c_str(), &info) != 0) {
    outcome.status = TrashOutcome::Status::missing;
    return outcome;
  }
  // The path travels as an AppleScript string literal: backslash and double quote escaped.
  const std::string script =
      "tell application \"Finder\" to delete (POSIX file \"" + appleScriptEscape(path) + "\" as alias)";
  if (runAppleScript(*runner_, script)) {
    outcome.status = TrashOutcome::Status::moved;
  } else {
    outcome.message = "Finder did not move it to the Trash";
  }
  return outcome;
}

bool FinderWorkspace::revealInFileManager(const std::string& path) {
  const ProcessOutput output = runner_->run("/usr/bin/open", {"-R", path}, std::chrono::seconds(5));
  return output.launched && output.exitStatus == 0;
}

bool FinderWorkspace::openUrl(const std::string& url) {
  const ProcessOutput output = runner_->run("/usr/bin/open", {url}, std::chrono::seconds(5));
  return output.launched && output.exitStatus == 0;
}

} // namespace halcyra::platform
