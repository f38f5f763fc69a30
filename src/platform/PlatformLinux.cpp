#include "platform/Platform.h"

#include "platform/PkexecPrivilegedRunner.h"

namespace halcyra::platform {

Platform Platform::forSystem(SystemPaths paths) {
  Platform platform;
  const bool ownHome = paths.home() == SystemPaths::current().home();
  platform.trash = std::make_shared<FreedesktopTrash>(freedesktopTrashDirectory(paths.home(), ownHome));
  platform.paths = std::move(paths);
  // A macOS tree given as the root (--root) keeps its system folders; this machine's own does not.
  platform.macSystemLayout = !platform.paths.rootIsRunningSystem();
  platform.processes = std::make_shared<SystemProcessRunner>();
  platform.runningApps = std::make_shared<SystemRunningApplications>();
  platform.privileged = std::make_shared<PkexecPrivilegedRunner>(platform.processes);
  platform.workspace = std::make_shared<FreedesktopWorkspace>(
      platform.processes, freedesktopTrashDirectory(platform.paths.home(), ownHome));
  return platform;
}

} // namespace halcyra::platform
