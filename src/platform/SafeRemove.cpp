#include "platform/SafeRemove.h"

#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

#include "platform/MountPoints.h"

namespace halcyra::platform {
namespace {

// Folders on the way to an item are only passed through, so they need search rights alone.
#if defined(O_PATH)
constexpr int kPassFlags = O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
#elif defined(O_SEARCH)
constexpr int kPassFlags = O_SEARCH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
#else
constexpr int kPassFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
#endif
// Folders that are emptied are read. O_NONBLOCK: should a FIFO take a folder's place between
// the look and the open, the open returns at once instead of waiting for a writer.
constexpr int kListFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK;

/// An owned descriptor.
class Fd {
public:
  explicit Fd(int fd = -1) noexcept : fd_(fd) {}
  ~Fd() { reset(); }
  Fd(Fd&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  Fd& operator=(Fd&& other) noexcept {
    if (this != &other) {
      reset();
      fd_ = std::exchange(other.fd_, -1);
    }
    return *this;
  }
  Fd(const Fd&) = delete;
  Fd& operator=(const Fd&) = delete;

  int get() const noexcept { return fd_; }
  explicit operator bool() const noexcept { return fd_ >= 0; }
  void reset() noexcept {
    if (fd_ >= 0) ::close(fd_);
    fd_ = -1;
  }

private:
  int fd_;
};

bool isPermissionError(int error) { return error == EACCES || error == EPERM || error == EROFS; }

bool isDotOrDotDot(const char* name) {
  return name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'));
}

std::vector<std::string> componentsOf(std::string_view path) {
  std::vector<std::string> parts;
  std::size_t start = 0;
  while (start < path.size()) {
    std::size_t slash = path.find('/', start);
    if (slash == std::string_view::npos) slash = path.size();
    if (slash > start) parts.emplace_back(path.substr(start, slash - start));
    start = slash + 1;
  }
  return parts;
}

RemoveOutcome unlinkFailure(int error) {
  if (error == ENOENT) return RemoveOutcome::alreadyGone;
  if (isPermissionError(error)) return RemoveOutcome::permissionDenied;
  return RemoveOutcome::failed;
}

// A failure to reach a name. ENOTDIR and ELOOP mean that something on the way is no longer a
// real folder (it was swapped for a link or a file): the path no longer leads where it did,
// and nothing is removed through it.
RemoveOutcome lookupFailure(int error) {
  if (error == ENOENT) return RemoveOutcome::alreadyGone;
  if (error == EACCES || error == EPERM) return RemoveOutcome::permissionDenied;
  return RemoveOutcome::failed;
}

// The worse of two outcomes: a failure outranks a refusal, which outranks success.
RemoveOutcome worse(RemoveOutcome a, RemoveOutcome b) {
  const auto rank = [](RemoveOutcome outcome) {
    switch (outcome) {
    case RemoveOutcome::failed: return 3;
    case RemoveOutcome::permissionDenied: return 2;
    case RemoveOutcome::removed: return 1;
    case RemoveOutcome::alreadyGone: return 0;
    }
    return 3;
  };
  return rank(a) >= rank(b) ? a : b;
}

/// A lookup of the folder that holds a path's last component.
struct ParentFolder {
  Fd fd;
  std::string name; ///< the last component
  std::optional<RemoveOutcome> failure;
  std::string reason;
};

constexpr const char* kPathChanged = "a folder on its path is a link or has been replaced";

std::string errorText(int error) { return std::strerror(error); }

void failLookup(ParentFolder& result, int error) {
  result.failure = lookupFailure(error);
  if (error == ELOOP || error == ENOTDIR) result.reason = kPathChanged;
  else if (error != ENOENT) result.reason = errorText(error);
}

// Opens every folder on the way from "/" by its name under the folder before it, refusing links,
// so that a folder swapped for a link anywhere on the path stops the lookup.
ParentFolder openParent(const std::string& path) {
  ParentFolder result;
  if (!isPlainAbsolutePath(path)) {
    result.failure = RemoveOutcome::failed;
    result.reason = "is not a plain absolute path";
    return result;
  }
  std::vector<std::string> parts = componentsOf(path);
  result.name = std::move(parts.back());
  parts.pop_back();
  result.fd = Fd(::open("/", kPassFlags));
  if (!result.fd) {
    failLookup(result, errno);
    return result;
  }
  for (const auto& part : parts) {
    Fd next(::openat(result.fd.get(), part.c_str(), kPassFlags));
    if (!next) {
      failLookup(result, errno);
      return result;
    }
    // Some systems hand out a descriptor of the link itself for a path-only, no-follow open.
    struct stat info {};
    if (::fstat(next.get(), &info) != 0 || !S_ISDIR(info.st_mode)) {
      result.failure = RemoveOutcome::failed;
      result.reason = kPathChanged;
      return result;
    }
    result.fd = std::move(next);
  }
  return result;
}

/// Empties one folder tree from an open descriptor of its top, children before parents.
///
/// Only one folder of the tree is open at a time: the walk goes down by name from the open
/// folder and back up through "..", checking that ".." is the very folder it came from, so a
/// tree of any depth needs two descriptors and no recursion. A folder that was moved away in
/// the meantime ends the walk instead of letting it unlink entries somewhere else. A folder on
/// another mount (a volume, or a bind mount of the same file system) is never entered.
class TreeEmptier {
public:
  void empty(Fd top) {
    struct stat self {};
    if (::fstat(top.get(), &self) != 0) {
      note(errno);
      return;
    }
    std::vector<Frame> stack;
    stack.push_back(Frame{{}, self.st_dev, self.st_ino, removeEntries(top.get())});
    Fd current = std::move(top);
    while (true) {
      Frame& frame = stack.back();
      if (!frame.subfolders.empty()) {
        std::string name = std::move(frame.subfolders.back());
        frame.subfolders.pop_back();
        struct stat info {};
        if (Fd child = enter(current.get(), name, info)) {
          std::vector<std::string> subfolders = removeEntries(child.get());
          stack.push_back(Frame{std::move(name), info.st_dev, info.st_ino, std::move(subfolders)});
          current = std::move(child);
        }
        continue;
      }
      if (stack.size() == 1) return;
      const std::string name = std::move(frame.name);
      stack.pop_back();
      Fd parent(::openat(current.get(), "..", kListFlags));
      current.reset();
      struct stat info {};
      if (!parent || ::fstat(parent.get(), &info) != 0 || info.st_dev != stack.back().device ||
          info.st_ino != stack.back().inode) {
        fail("a folder inside it was moved away during the removal");
        return;
      }
      current = std::move(parent);
      if (::unlinkat(current.get(), name.c_str(), AT_REMOVEDIR) != 0) noteFolderError(errno);
    }
  }

  Removal outcome() const {
    if (failed_) return {RemoveOutcome::failed, reason_};
    if (refused_) return {RemoveOutcome::permissionDenied, reason_};
    return {RemoveOutcome::removed, {}};
  }

private:
  struct Frame {
    std::string name; ///< the folder's name in its parent
    dev_t device;
    ino_t inode;
    std::vector<std::string> subfolders; ///< still to do, taken from the back
  };

  void fail(std::string reason) {
    if (!failed_) reason_ = std::move(reason);
    failed_ = true;
  }

  void note(int error) {
    if (error == ENOENT) return; // gone already: nothing left to do
    if (isPermissionError(error)) {
      if (!refused_ && !failed_) reason_ = "permission denied for something inside it";
      refused_ = true;
    } else {
      fail("something inside it could not be removed: " + errorText(error));
    }
  }

  // A folder that stays non-empty after its walk holds what was refused or failed; if nothing
  // was, an entry appeared during the walk, and the tree is not gone.
  void noteFolderError(int error) {
    if (error == ENOTEMPTY || error == EEXIST) {
      if (!refused_ && !failed_) fail("something was added inside it during the removal");
      return;
    }
    note(error);
  }

  // Opens a sub-folder by name for the walk; none when it is not to be entered.
  Fd enter(int parent, const std::string& name, struct stat& info) {
    Fd child(::openat(parent, name.c_str(), kListFlags));
    if (!child) {
      const int error = errno;
      if (error == ELOOP || error == ENOTDIR) {
        // Swapped for a link or a file since the listing: remove the name, never what it points at.
        if (::unlinkat(parent, name.c_str(), 0) != 0) note(errno);
      } else {
        note(error);
      }
      return Fd();
    }
    if (::fstat(child.get(), &info) != 0) {
      note(errno);
      return Fd();
    }
    if (isMountPoint(parent, child.get())) {
      // A volume or a bind mount inside the tree: never entered, so the tree stays.
      fail("a mounted folder inside it is never entered");
      return Fd();
    }
    return child;
  }

  // Lists a folder, unlinks every entry that is not a folder (links, FIFOs and devices by name,
  // never opened) and returns the names of the sub-folders. The whole listing is read before
  // anything is unlinked: a directory stream that changes under it may skip entries.
  std::vector<std::string> removeEntries(int folder) {
    std::vector<std::string> subfolders;
    std::vector<std::string> others;
    const int listingFd = ::dup(folder);
    if (listingFd < 0) {
      fail("it could not be read: " + errorText(errno));
      return subfolders;
    }
    DIR* listing = ::fdopendir(listingFd);
    if (listing == nullptr) {
      ::close(listingFd);
      fail("it could not be read: " + errorText(errno));
      return subfolders;
    }
    while (true) {
      errno = 0;
      const dirent* entry = ::readdir(listing);
      if (entry == nullptr) {
        // A read error: the listing is incomplete.
        if (errno != 0) fail("a folder inside it could not be read: " + errorText(errno));
        break;
      }
      if (isDotOrDotDot(entry->d_name)) continue;
      bool isFolder = entry->d_type == DT_DIR;
      if (entry->d_type == DT_UNKNOWN) {
        struct stat info {};
        if (::fstatat(folder, entry->d_name, &info, AT_SYMLINK_NOFOLLOW) != 0) {
          note(errno);
          continue;
        }
        isFolder = S_ISDIR(info.st_mode);
      }
      (isFolder ? subfolders : others).emplace_back(entry->d_name);
    }
    ::closedir(listing);

    for (auto& name : others) {
      if (::unlinkat(folder, name.c_str(), 0) == 0) continue;
      const int error = errno;
      // Linux says EISDIR and macOS EPERM when the name has become a folder since the listing.
      if (error == EISDIR || error == EPERM) {
        struct stat info {};
        if (::fstatat(folder, name.c_str(), &info, AT_SYMLINK_NOFOLLOW) == 0 && S_ISDIR(info.st_mode)) {
          subfolders.push_back(std::move(name));
          continue;
        }
      }
      note(error);
    }
    return subfolders;
  }

  bool refused_ = false;
  bool failed_ = false;
  std::string reason_;
};

Removal failure(RemoveOutcome outcome, int error) {
  if (outcome == RemoveOutcome::alreadyGone) return {outcome, {}};
  if (outcome == RemoveOutcome::permissionDenied) return {outcome, "permission denied"};
  return {outcome, "could not be removed: " + errorText(error)};
}

FileIdentity identityOf(const struct stat& info) {
  return FileIdentity{static_cast<std::uint64_t>(info.st_dev), static_cast<std::uint64_t>(info.st_ino)};
}

constexpr const char* kReplaced = "was replaced since it was reviewed";

// Empties the folder `name` under the open `parent`, then removes it. With `expected`, the
// folder opened must be that very folder.
Removal removeFolder(int parent, const std::string& name, const FileIdentity* expected) {
  Fd folder(::openat(parent, name.c_str(), kListFlags));
  if (!folder) {
    const int error = errno;
    if (error == ELOOP || error == ENOTDIR) {
      // Swapped for a link or a file since the look. Without an identity to hold to, the name
      // goes and never what it points at; with one, it is not the item that was reviewed.
      if (expected != nullptr) return {RemoveOutcome::failed, kReplaced};
      if (::unlinkat(parent, name.c_str(), 0) == 0) return {RemoveOutcome::removed, {}};
      const int unlinkError = errno;
      return failure(unlinkFailure(unlinkError), unlinkError);
    }
    return failure(lookupFailure(error), error);
  }
  struct stat self {};
  if (::fstat(folder.get(), &self) != 0) return failure(RemoveOutcome::failed, errno);
  if (expected != nullptr && identityOf(self) != *expected) return {RemoveOutcome::failed, kReplaced};
  if (isMountPoint(parent, folder.get())) return {RemoveOutcome::failed, "is a mount point, which is never removed"};

  TreeEmptier emptier;
  emptier.empty(std::move(folder));
  const Removal inside = emptier.outcome();
  if (::unlinkat(parent, name.c_str(), AT_REMOVEDIR) == 0) return {RemoveOutcome::removed, {}};
  const int error = errno;
  if (error == ENOENT) return {RemoveOutcome::removed, {}}; // emptied, and taken away by someone else
  if (error == ENOTEMPTY || error == EEXIST) {
    if (inside.outcome == RemoveOutcome::removed) return {RemoveOutcome::failed, "something was added inside it during the removal"};
    return inside;
  }
  const Removal own = failure(unlinkFailure(error), error);
  return worse(inside.outcome, own.outcome) == inside.outcome ? inside : own;
}

// Removes the entry `name` of the open folder `parent`: a file, link or special file by
// unlinking its name, a folder by emptying it first.
Removal removeEntry(int parent, const std::string& name, const FileIdentity* expected) {
  struct stat info {};
  if (::fstatat(parent, name.c_str(), &info, AT_SYMLINK_NOFOLLOW) != 0) {
    const int error = errno;
    return failure(lookupFailure(error), error);
  }
  if (expected != nullptr && identityOf(info) != *expected) return {RemoveOutcome::failed, kReplaced};
  if (!S_ISDIR(info.st_mode)) {
    if (::unlinkat(parent, name.c_str(), 0) == 0) return {RemoveOutcome::removed, {}};
    const int error = errno;
    const bool becameFolder = (error == EISDIR || error == EPERM) &&
                              ::fstatat(parent, name.c_str(), &info, AT_SYMLINK_NOFOLLOW) == 0 &&
                              S_ISDIR(info.st_mode);
    if (!becameFolder) {
      if (error == EBUSY) return {RemoveOutcome::failed, "is a mount point, which is never removed"};
      return failure(unlinkFailure(error), error);
    }
    if (expected != nullptr) return {RemoveOutcome::failed, kReplaced};
  }
  return removeFolder(parent, name, expected);
}

} // namespace

bool isPlainAbsolutePath(std::string_view path) {
  if (path.empty() || path.front() != '/' || path.back() == '/') return false;
  if (path.find('\0') != std::string_view::npos) return false;
  for (const auto& part : componentsOf(path)) {
    if (part == "." || part == "..") return false;
  }
  return true;
}

Removal removeItemExplained(const std::string& path) {
  ParentFolder parent = openParent(path);
  if (parent.failure) return {*parent.failure, parent.reason};
  return removeEntry(parent.fd.get(), parent.name, nullptr);
}

RemoveOutcome removeItem(const std::string& path) { return removeItemExplained(path).outcome; }

std::optional<ItemIdentity> identify(const std::string& path) {
  ParentFolder parent = openParent(path);
  if (parent.failure) return std::nullopt;
  struct stat folder {};
  struct stat item {};
  if (::fstat(parent.fd.get(), &folder) != 0) return std::nullopt;
  if (::fstatat(parent.fd.get(), parent.name.c_str(), &item, AT_SYMLINK_NOFOLLOW) != 0) return std::nullopt;
  return ItemIdentity{identityOf(item), identityOf(folder)};
}

Removal removeIdentified(const std::string& path, const ItemIdentity& expected) {
  ParentFolder parent = openParent(path);
  if (parent.failure) return {*parent.failure, parent.reason};
  struct stat folder {};
  if (::fstat(parent.fd.get(), &folder) != 0) return failure(RemoveOutcome::failed, errno);
  if (identityOf(folder) != expected.parent) return {RemoveOutcome::failed, "the folder that holds it was replaced since it was reviewed"};
  return removeEntry(parent.fd.get(), parent.name, &expected.item);
}

RemoveOutcome removeContents(const std::string& path) {
  ParentFolder parent = openParent(path);
  if (parent.failure) return *parent.failure;
  Fd folder(::openat(parent.fd.get(), parent.name.c_str(), kListFlags));
  if (!folder) return lookupFailure(errno);
  if (isMountPoint(parent.fd.get(), folder.get())) return RemoveOutcome::failed; // never emptied
  TreeEmptier emptier;
  emptier.empty(std::move(folder));
  return emptier.outcome().outcome;
}

bool isGone(const std::string& path) {
  if (path.find('\0') != std::string::npos) return false;
  struct stat info {};
  if (::lstat(path.c_str(), &info) == 0) return false;
  return errno == ENOENT || errno == ENOTDIR;
}

} // namespace halcyra::platform
