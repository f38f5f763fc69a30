#pragma once

#include <functional>
#include <optional>
#include <string>

namespace halcyra::platform {

class SystemPaths;

/// Keeps the runs of Halcyra of one user that delete or overwrite from overlapping: two runs
/// that each decided from their own scan which copy to keep could otherwise each remove the
/// other's. Held for as long as the object lives; released by the system if the process dies.
class RunLock {
public:
  /// Takes the lock of the user of `paths`, waiting while another run holds it; `onWait` is
  /// told once when it has to wait. None when no lock file can be made at all, in which case
  /// the caller goes on unguarded rather than refusing to work.
  static std::optional<RunLock> acquire(const SystemPaths& paths, const std::function<void()>& onWait = {});

  /// Where the lock lives: the user's runtime folder when there is one of the user's own,
  /// otherwise a folder in the home.
  static std::string lockFilePath(const SystemPaths& paths);

  RunLock(RunLock&& other) noexcept;
  RunLock& operator=(RunLock&& other) noexcept;
  RunLock(const RunLock&) = delete;
  RunLock& operator=(const RunLock&) = delete;
  ~RunLock();

private:
  explicit RunLock(int fd) : fd_(fd) {}
  int fd_ = -1;
};

} // namespace halcyra::platform
