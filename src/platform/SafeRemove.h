#pragma once

#include <cstdint>
#include <optional>
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

/// Which file an entry is: device and inode, as seen without following a link.
struct FileIdentity {
  std::uint64_t device = 0;
  std::uint64_t inode = 0;
  bool operator==(const FileIdentity&) const = default;
};

/// An item and the folder that holds it, as the unprivileged side saw them. The privileged
/// step acts on a path only while both are still the same files.
struct ItemIdentity {
  FileIdentity item;
  FileIdentity parent;
  bool operator==(const ItemIdentity&) const = default;
};

/// How a removal ended, with the reason in words when it did not succeed.
struct Removal {
  RemoveOutcome outcome = RemoveOutcome::failed;
  std::string reason; ///< empty for `removed` and `alreadyGone`
};

/// The identities of the item at `path` and of its folder, reached as removeItem reaches them:
/// from "/", one component at a time, no link followed. None when the path is not plain, a
/// link or a file stands on the way, or the item is gone.
std::optional<ItemIdentity> identify(const std::string& path);

/// removeItem for an item that must still be the one identified: the folders on the way are
/// opened without following links, the folder that holds the item and the item itself must
/// have the identities given (a folder is checked again once it is open), and only then is it
/// removed with the same care. An item that is gone gives `alreadyGone`; a changed one
/// `failed`, with the reason.
Removal removeIdentified(const std::string& path, const ItemIdentity& expected);

/// removeItem with the reason of a failure in words.
Removal removeItemExplained(const std::string& path);

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
