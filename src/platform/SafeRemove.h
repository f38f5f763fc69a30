#pragma once

#include <string>
#include <string_view>

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
///
/// The path must be plain (see isPlainAbsolutePath) and name every folder on the way by its
/// real name: a symbolic link anywhere before the last component gives `failed` and touches
/// nothing. A folder that could only be emptied in part because some entry in it was refused
/// for lack of rights gives `permissionDenied`: the folder is still there, and a privileged
/// removal of the whole item finishes the job. An entry that fails for any other reason (a
/// mounted volume inside the folder, which is never entered, a read error, a folder moved away
/// during the walk) gives `failed`, so that no privileged removal is tried on it. Any depth and
/// any number of entries are removed with a small, fixed number of open descriptors.
RemoveOutcome removeItem(const std::string& path);

/// Removes everything inside the folder at `path` and leaves the folder itself, with the same
/// care as removeItem. `removed` when the folder is empty afterwards, `alreadyGone` when there
/// is no such folder; a symbolic link or a file at `path` gives `failed`.
RemoveOutcome removeContents(const std::string& path);

/// Whether the path is absolute, names something below "/", holds no NUL byte, no "." or ".."
/// component and no trailing slash. Only such paths are removed: "link/" would let a tool
/// that follows the trailing slash reach the target of a link, and ".." can climb out of the
/// folder a path seems to name.
bool isPlainAbsolutePath(std::string_view path);

/// True only when the path is known not to exist: nothing is there, links not followed. An
/// entry that cannot be looked at (a folder on the way is unreadable) is not known to be gone.
bool isGone(const std::string& path);

} // namespace halcyra::platform
