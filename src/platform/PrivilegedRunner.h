#pragma once

#include <string>
#include <vector>

namespace halcyra::platform {

/// What the privileged helper left after one prompt.
struct PrivilegedOutput {
  bool granted = false; ///< the prompt was accepted and the helper ran to its end
  std::string output;   ///< what the helper printed: one report line per item
};

/// Asks the user once for administrator rights and runs one thing with them.
class PrivilegedRunner {
public:
  virtual ~PrivilegedRunner() = default;
  /// True when the line ran and succeeded. A declined prompt, a missing helper and a failed
  /// command all give false, and cannot be told apart.
  virtual bool runShellLine(const std::string& line) = 0;
  /// Runs the program's own privileged helper (`halcyra-helper`, installed beside the
  /// executables) with `arguments`, each passed as one word. Removals and overwrites with
  /// administrator rights go through it and never through a shell command, so that root works
  /// from descriptors and checks identities instead of resolving a path again.
  virtual PrivilegedOutput runHelper(const std::vector<std::string>& arguments) = 0;
};

/// The helper beside the running executable. Fixed by where the program is installed, never
/// taken from a scanned disk.
std::string privilegedHelperPath();

} // namespace halcyra::platform
