#pragma once

#include <memory>

#include "platform/PrivilegedRunner.h"

namespace halcyra::platform {

class ProcessRunner;

/// macOS: the line in a "do shell script ... with administrator privileges" script, run by
/// "/usr/bin/osascript -e", which raises the system's password prompt once per line.
class OsascriptPrivilegedRunner final : public PrivilegedRunner {
public:
  explicit OsascriptPrivilegedRunner(std::shared_ptr<ProcessRunner> runner) : runner_(std::move(runner)) {}

  /// A line that is not valid UTF-8 is refused without a prompt: AppleScript text is Unicode,
  /// and a byte it cannot carry would reach the shell as a different path.
  bool runShellLine(const std::string& line) override;

private:
  std::shared_ptr<ProcessRunner> runner_;
};

} // namespace halcyra::platform
