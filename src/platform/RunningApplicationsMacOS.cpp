#include "platform/RunningApplications.h"

#include <libproc.h>
#include <unistd.h>
#include <vector>

namespace halcyra::platform {

// The names of the user's processes. Application bundles run their executable under the
// application's name, which is what the catalogue lists.
std::set<std::string> SystemRunningApplications::snapshotRunningAppNames() {
  std::set<std::string> names;
  const int count = proc_listallpids(nullptr, 0);
  if (count <= 0) return names;
  std::vector<pid_t> pids(static_cast<std::size_t>(count) * 2);
  const int filled = proc_listallpids(pids.data(), static_cast<int>(pids.size() * sizeof(pid_t)));
  const uid_t me = getuid();
  for (int i = 0; i < filled; ++i) {
    proc_bsdshortinfo info{};
    if (proc_pidinfo(pids[i], PROC_PIDT_SHORTBSDINFO, 0, &info, sizeof info) != sizeof info) continue;
    if (info.pbsi_uid != me) continue;
    char name[2 * MAXCOMLEN + 1] = {};
    if (proc_name(pids[i], name, sizeof name) > 0) names.insert(toLowerAscii(name));
  }
  return names;
}

} // namespace halcyra::platform
