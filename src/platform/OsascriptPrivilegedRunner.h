#pragma once

#include <memory>
#include <string>

#include "platform/PrivilegedRunner.h"

namespace halcyra::platform {

class ProcessRunner;

/// macOS: the line in a "do shell script ... with administrator privileges" script, run by
/// "/usr/bin/osascript -e", which raises the system's password prompt once per line.
class OsascriptPrivilegedRunner final : public PrivilegedRunner {
public:
  OsascriptPrivilegedRunner(std::shared_ptr<ProcessRunner> runner, std::string helperPath = privilegedHelperPath())
      : runner_(std::move(runner)), helperPath_(std::move(helperPath)) {}

  /// A line that is not valid UTF-8 is refused without a prompt: AppleScript text is Unicode,
  /// and a byte it cannot carry would reach the shell as a different path.
  bool runShellLine(const std::string& line) override;
  /// The helper and its arguments as single-quoted words of one shell line, for the same
  /// script form; its report comes back as the script's result.
  PrivilegedOutput runHelper(const std::vector<std::string>& arguments) override;

private:
  std::shared_ptr<ProcessRunner> runner_;
  std::string helperPath_;
};

} // namespace halcyra::platform
