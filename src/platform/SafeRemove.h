#pragma once

#include <string>

namespace halcyra::platform {

/// How a removal ended.
enum class RemoveOutcome {
  removed,          ///< the item is gone
  alreadyGone,      ///< nothing was there to remove
  permissionDenied, ///< refused for lack of rights (EACCES, EPERM, a read-only parent): a case for the privileged batch
  failed,           ///< any other failure
};

/// Removes a file, a symbolic link (as a link; its target stays) or a whole folder, the way a
/// careful `rm -r` does: from a held descriptor of the parent with openat/unlinkat and
/// no-follow flags, children before parents, with an explicit stack instead of recursion.
/// Never follows a symbolic link at any depth, never opens FIFOs, sockets or devices, and
/// cannot be redirected when a folder on the path has been swapped for a link since the
/// item was found. A folder is only reported removed when the folder itself is gone.
RemoveOutcome removeItem(const std::string& path);

} // namespace halcyra::platform
