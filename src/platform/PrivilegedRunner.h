#pragma once

#include <string>

namespace halcyra::platform {

/// Runs one shell line with administrator rights, asking the user once.
class PrivilegedRunner {
public:
  virtual ~PrivilegedRunner() = default;
  /// True when the line ran and succeeded. A declined prompt, a missing helper and a failed
  /// command all give false, and cannot be told apart.
  virtual bool runShellLine(const std::string& line) = 0;
};

} // namespace halcyra::platform
