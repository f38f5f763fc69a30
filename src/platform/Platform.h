#pragma once

#include <atomic>
#include <memory>

#include "platform/PrivilegedRunner.h"
#include "platform/ProcessRunner.h"
#include "platform/RunningApplications.h"
#include "platform/SystemPaths.h"
#include "platform/Trash.h"
#include "platform/Workspace.h"

namespace halcyra::platform {

/// Everything an engine may ask of the operating system, in one bundle. The real one comes
/// from `forSystem`; tests fill the fields with doubles and a fake home and root.
struct Platform {
  SystemPaths paths = SystemPaths::current();
  std::shared_ptr<ProcessRunner> processes;
  std::shared_ptr<RunningApplications> runningApps;
  std::shared_ptr<Trash> trash;
  std::shared_ptr<PrivilegedRunner> privileged;
  std::shared_ptr<Workspace> workspace;
  /// Whether the system root holds a macOS system, whose own folders (/Library, /private/var)
  /// the catalogue's "System" rows name. False for the running Linux system itself: its /var/log,
  /// journal and login records are not the Mac's logs those rows describe.
  bool macSystemLayout = true;
  /// Set when the user asks the process to stop (SIGINT or SIGTERM in the command line). Long
  /// work checks it only where stopping leaves nothing half done, and then ends early with what
  /// it did. None: nobody can ask.
  std::shared_ptr<const std::atomic<bool>> stopFlag;

  bool stopRequested() const { return stopFlag && stopFlag->load(std::memory_order_relaxed); }

  /// The real implementations for this operating system, looking at `paths`.
  static Platform forSystem(SystemPaths paths = SystemPaths::current());
};

} // namespace halcyra::platform
