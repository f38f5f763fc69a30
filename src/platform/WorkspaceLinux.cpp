#include "platform/Workspace.h"

#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/ProcessRunner.h"
#include "platform/SystemPaths.h"

namespace halcyra::platform {
namespace {

constexpr const char* kXdgOpen = "/usr/bin/xdg-open";
constexpr std::chrono::seconds kOpenTimeLimit{10};
constexpr std::size_t kNameMax = 255;
constexpr std::string_view kInfoSuffix = ".trashinfo";


std::string parentOf(const std::string& path) {
  const auto slash = path.rfind('/');
  return slash == 0 ? "/" : path.substr(0, slash);
}

std::string baseName(const std::string& path) { return path.substr(path.rfind('/') + 1); }

bool isWithin(const std::string& path, const std::string& folder) {
  return path == folder || (path.size() > folder.size() && path.compare(0, folder.size(), folder) == 0 &&
                            path[folder.size()] == '/');
}

std::string defaultMountPoint(const std::string& folder) {
  struct stat info {};
  if (::stat(folder.c_str(), &info) != 0) return {};
  const dev_t device = info.st_dev;
  std::string current = folder;
  while (current != "/") {
    const std::string parent = parentOf(current);
    if (::stat(parent.c_str(), &info) != 0 || info.st_dev != device) break;
    current = parent;
  }
  return current;
}

// The device of a path, or of its nearest existing ancestor: where it would be made.
bool deviceOf(std::string path, dev_t& device) {
  struct stat info {};
  while (::stat(path.c_str(), &info) != 0) {
    if (path == "/") return false;
    path = parentOf(path);
  }
  device = info.st_dev;
  return true;
}

struct Descriptor {
  int fd = -1;
  Descriptor() = default;
  explicit Descriptor(int value) : fd(value) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (fd >= 0) ::close(fd);
  }
};

// Opens the folder `name` inside `parent`, making it (mode 0700) when absent. It must be a real
// folder, not a link, and belong to this user; a private one must also be closed to others.
int openTrashFolder(int parent, const char* name, bool mustBePrivate) {
  if (::mkdirat(parent, name, 0700) != 0 && errno != EEXIST) return -1;
  const int fd = ::openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  if (fd < 0) return -1;
  struct stat info {};
  if (::fstat(fd, &info) != 0 || info.st_uid != ::geteuid() || (mustBePrivate && (info.st_mode & 077) != 0)) {
    ::close(fd);
    return -1;
  }
  return fd;
}

// "name", then "name.2", "name.3", ... before the extension ("report.2.pdf"), cut so that the
// record's name stays within NAME_MAX bytes, at a character boundary.
std::string candidateName(const std::string& name, int attempt) {
  std::string stem = name;
  std::string extension;
  const auto dot = name.rfind('.');
  if (attempt > 1 && dot != std::string::npos && dot > 0) {
    stem = name.substr(0, dot);
    extension = name.substr(dot);
  }
  const std::string counter = attempt > 1 ? "." + std::to_string(attempt) : "";
  const std::size_t room = kNameMax - kInfoSuffix.size();
  if (extension.size() > room / 2) {
    stem += extension;
    extension.clear();
  }
  const std::size_t stemRoom = room - counter.size() - extension.size();
  if (stem.size() > stemRoom) {
    std::size_t cut = stemRoom;
    while (cut > 0 && (static_cast<unsigned char>(stem[cut]) & 0xC0) == 0x80) --cut;
    stem.resize(cut);
  }
  return stem + counter + extension;
}

std::string deletionDate() {
  const std::time_t now = std::time(nullptr);
  std::tm local {};
  ::localtime_r(&now, &local);
  char text[32];
  std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &local);
  return text;
}

bool writeAll(int fd, const std::string& text) {
  std::size_t written = 0;
  while (written < text.size()) {
    const ssize_t count = ::write(fd, text.data() + written, text.size() - written);
    if (count < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    written += static_cast<std::size_t>(count);
  }
  return true;
}

// Renames without replacing anything. Where the file system lacks the flag, a look before the
// plain rename stands in for it.
int renameNoReplace(const char* from, int toFolder, const char* to) {
  if (::renameat2(AT_FDCWD, from, toFolder, to, RENAME_NOREPLACE) == 0) return 0;
  if (errno != EINVAL && errno != ENOSYS) return -1;
  struct stat info {};
  if (::fstatat(toFolder, to, &info, AT_SYMLINK_NOFOLLOW) == 0) {
    errno = EEXIST;
    return -1;
  }
  return ::renameat(AT_FDCWD, from, toFolder, to);
}

TrashOutcome outcome(TrashOutcome::Status status, std::string message) {
  TrashOutcome result;
  result.status = status;
  result.message = std::move(message);
  return result;
}

// Reserves a name by creating its record first (O_EXCL), then renames the item under it; a
// name taken in files/ without a record makes the next name be tried.
TrashOutcome moveInto(int trash, const std::string& trashPath, const std::string& item, const std::string& recordedPath) {
  const Descriptor files(openTrashFolder(trash, "files", false));
  const Descriptor info(openTrashFolder(trash, "info", false));
  if (files.fd < 0 || info.fd < 0) {
    return outcome(TrashOutcome::Status::noTrash, "the Trash folder cannot be used: " + trashPath);
  }
  const std::string record = "[Trash Info]\nPath=" + FreedesktopWorkspace::percentEncoded(recordedPath) +
                             "\nDeletionDate=" + deletionDate() + "\n";
  const std::string name = baseName(item);
  for (int attempt = 1; attempt <= 10000; ++attempt) {
    const std::string candidate = candidateName(name, attempt);
    const std::string infoName = candidate + std::string(kInfoSuffix);
    const int fd = ::openat(info.fd, infoName.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
    if (fd < 0) {
      if (errno == EEXIST) continue;
      return outcome(TrashOutcome::Status::failed, "cannot write the Trash record: " + std::string(std::strerror(errno)));
    }
    const bool written = writeAll(fd, record);
    ::close(fd);
    if (!written) {
      ::unlinkat(info.fd, infoName.c_str(), 0);
      return outcome(TrashOutcome::Status::failed, "cannot write the Trash record");
    }
    if (renameNoReplace(item.c_str(), files.fd, candidate.c_str()) == 0) {
      TrashOutcome result;
      result.status = TrashOutcome::Status::moved;
      result.trashedPath = trashPath + "/files/" + candidate;
      return result;
    }
    const int error = errno;
    ::unlinkat(info.fd, infoName.c_str(), 0);
    if (error == EEXIST || error == ENOTEMPTY) continue;
    return outcome(TrashOutcome::Status::failed, std::strerror(error));
  }
  return outcome(TrashOutcome::Status::failed, "no free name in the Trash");
}

} // namespace

FreedesktopWorkspace::FreedesktopWorkspace(std::shared_ptr<ProcessRunner> runner, std::string homeTrash,
                                           std::function<std::string(const std::string&)> mountPointOf)
    : runner_(std::move(runner)), homeTrash_(normalisedAbsolutePath(homeTrash)), mountPointOf_(std::move(mountPointOf)) {
  if (!mountPointOf_) mountPointOf_ = defaultMountPoint;
}

std::string FreedesktopWorkspace::percentEncoded(const std::string& path) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  std::string result;
  for (const char c : path) {
    const auto byte = static_cast<unsigned char>(c);
    if ((byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9') ||
        std::strchr("/-_.!~*'()", c) != nullptr) {
      result.push_back(c);
    } else {
      result.push_back('%');
      result.push_back(kDigits[byte >> 4]);
      result.push_back(kDigits[byte & 0x0F]);
    }
  }
  return result;
}

TrashOutcome FreedesktopWorkspace::moveToTrash(const std::string& path) {
  // Trailing slashes go: "link/" must not come to mean the folder the link points to.
  const std::string item = normalisedAbsolutePath(path);
  if (item == "/" || path.empty()) return outcome(TrashOutcome::Status::failed, "not an item: " + path);
  if (isWithin(homeTrash_, item) || isWithin(item, homeTrash_)) {
    return outcome(TrashOutcome::Status::failed, "the Trash cannot go into itself");
  }
  struct stat itemInfo {};
  if (::lstat(item.c_str(), &itemInfo) != 0) {
    if (errno == ENOENT || errno == ENOTDIR) return outcome(TrashOutcome::Status::missing, "no such item: " + item);
    return outcome(TrashOutcome::Status::failed, std::strerror(errno));
  }

  dev_t homeDevice = 0;
  if (deviceOf(homeTrash_, homeDevice) && homeDevice == itemInfo.st_dev) {
    std::error_code error;
    std::filesystem::create_directories(homeTrash_, error);
    ::chmod(homeTrash_.c_str(), 0700);
    const Descriptor trash(::open(homeTrash_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (trash.fd < 0) return outcome(TrashOutcome::Status::noTrash, "the Trash cannot be made: " + homeTrash_);
    return moveInto(trash.fd, homeTrash_, item, item);
  }

  // Another volume: its own Trash at the top, "$topdir/.Trash-$uid", holding paths relative
  // to the top.
  char* real = ::realpath(parentOf(item).c_str(), nullptr);
  if (real == nullptr) return outcome(TrashOutcome::Status::failed, std::strerror(errno));
  const std::string realParent = real;
  std::free(real);
  const std::string realItem = (realParent == "/" ? "" : realParent) + "/" + baseName(item);
  const std::string top = mountPointOf_(realParent);
  const Descriptor topFd(top.empty() ? -1 : ::open(top.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  struct stat topInfo {};
  if (topFd.fd < 0 || ::fstat(topFd.fd, &topInfo) != 0 || topInfo.st_dev != itemInfo.st_dev ||
      !isWithin(realItem, top)) {
    return outcome(TrashOutcome::Status::noTrash, "its volume has no Trash: " + item);
  }
  const std::string trashName = ".Trash-" + std::to_string(::geteuid());
  const Descriptor trash(openTrashFolder(topFd.fd, trashName.c_str(), true));
  const std::string trashPath = (top == "/" ? "" : top) + "/" + trashName;
  if (trash.fd < 0) return outcome(TrashOutcome::Status::noTrash, "its volume has no safe Trash: " + trashPath);
  const std::string relative = realItem.substr(top == "/" ? 1 : top.size() + 1);
  return moveInto(trash.fd, trashPath, item, relative);
}

bool FreedesktopWorkspace::revealInFileManager(const std::string& path) {
  // xdg-open cannot select an item: show the folder that holds it.
  const std::string folder = parentOf(normalisedAbsolutePath(path));
  const auto output = runner_->run(kXdgOpen, {folder}, kOpenTimeLimit);
  return output.launched && !output.timedOut && output.exitStatus == 0;
}

bool FreedesktopWorkspace::openUrl(const std::string& url) {
  if (url.empty() || url.front() == '-') return false; // never read as an option
  const auto output = runner_->run(kXdgOpen, {url}, kOpenTimeLimit);
  return output.launched && !output.timedOut && output.exitStatus == 0;
}

} // namespace halcyra::platform
