#include "platform/SafeRemove.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace halcyra::platform {

// First cut: files and links only; folders arrive with the careful walk.
RemoveOutcome removeItem(const std::string& path) {
  if (::unlinkat(AT_FDCWD, path.c_str(), 0) == 0) return RemoveOutcome::removed;
  if (errno == ENOENT) return RemoveOutcome::alreadyGone;
  if (errno == EACCES || errno == EPERM || errno == EROFS) return RemoveOutcome::permissionDenied;
  return RemoveOutcome::failed;
}

} // namespace halcyra::platform
