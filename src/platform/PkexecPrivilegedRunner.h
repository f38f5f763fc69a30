#pragma once

#include <memory>

#include "platform/PrivilegedRunner.h"

namespace halcyra::platform {

class ProcessRunner;

/// Linux: "/usr/bin/pkexec /bin/sh -c <line>", which asks through the desktop's polkit agent
/// once per line.
class PkexecPrivilegedRunner final : public PrivilegedRunner {
public:
  explicit PkexecPrivilegedRunner(std::shared_ptr<ProcessRunner> runner) : runner_(std::move(runner)) {}
  bool runShellLine(const std::string& line) override;

private:
  std::shared_ptr<ProcessRunner> runner_;
};

} // namespace halcyra::platform
