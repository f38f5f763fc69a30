#include "platform/Platform.h"

#include "platform/OsascriptPrivilegedRunner.h"

namespace halcyra::platform {

Platform Platform::forSystem(SystemPaths paths) {
  Platform platform;
  platform.processes = std::make_shared<SystemProcessRunner>();
  platform.trash = std::make_shared<FinderTrash>(platform.processes, paths.home());
  platform.paths = std::move(paths);
  platform.runningApps = std::make_shared<SystemRunningApplications>();
  platform.privileged = std::make_shared<OsascriptPrivilegedRunner>(platform.processes);
  platform.workspace = std::make_shared<FinderWorkspace>(platform.processes);
  return platform;
}

} // namespace halcyra::platform
