#pragma once

#include <string>

#include "platform/SystemPaths.h"

namespace halcyra::platform {

/// Whether this process may read what only a process with Full Disk Access may read, found
/// out by trying. There is no cache: every call repeats the test.
///
/// On Linux the same path test runs; no such folder exists there, so the answer is "denied"
/// and the catalogue's targets that need the permission (all of them macOS system folders)
/// are passed over.
class FullDiskAccessChecker {
public:
  explicit FullDiskAccessChecker(SystemPaths paths) : paths_(std::move(paths)) {}

  /// True when home + "/Library/Containers/com.apple.stocks" can be listed, whatever it holds.
  bool hasFullDiskAccess() const;

  /// Six lines for the log: the home, four probes with their marks, and the result.
  std::string diagnosticInfo() const;

private:
  SystemPaths paths_;
};

} // namespace halcyra::platform
