#pragma once

#include <memory>
#include <string>

#include "platform/PrivilegedRunner.h"

namespace halcyra::platform {

class ProcessRunner;

/// Linux: "/usr/bin/pkexec", which asks through the desktop's polkit agent once per call:
/// "/bin/sh -c <line>" for a shell line, the helper itself with its arguments as they are for
/// the helper, so no shell reads them.
class PkexecPrivilegedRunner final : public PrivilegedRunner {
public:
  PkexecPrivilegedRunner(std::shared_ptr<ProcessRunner> runner, std::string helperPath = privilegedHelperPath())
      : runner_(std::move(runner)), helperPath_(std::move(helperPath)) {}
  bool runShellLine(const std::string& line) override;
  PrivilegedOutput runHelper(const std::vector<std::string>& arguments) override;

private:
  std::shared_ptr<ProcessRunner> runner_;
  std::string helperPath_;
};

} // namespace halcyra::platform
