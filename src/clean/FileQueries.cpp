#include "clean/FileQueries.h"

#include <cctype>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/MountPoints.h"

namespace halcyra::clean {
namespace {

PathKind kindOf(mode_t mode) {
  if (S_ISDIR(mode)) return PathKind::directory;
  if (S_ISREG(mode)) return PathKind::file;
  if (S_ISLNK(mode)) return PathKind::symlink;
  return PathKind::other;
}

} // namespace

PathKind pathKind(const std::string& path) {
  struct stat info {};
  if (::lstat(path.c_str(), &info) != 0) return PathKind::missing;
  return kindOf(info.st_mode);
}

std::optional<std::vector<DirectoryEntry>> listDirectory(const std::string& path) {
  // O_NOFOLLOW: a folder swapped for a link is not listed; O_NONBLOCK: a FIFO never blocks.
  const int fd = ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK);
  if (fd < 0) return std::nullopt;
  DIR* dir = ::fdopendir(fd);
  if (dir == nullptr) {
    ::close(fd);
    return std::nullopt;
  }
  std::vector<DirectoryEntry> entries;
  while (const dirent* entry = ::readdir(dir)) {
    const std::string name = entry->d_name;
    if (name == "." || name == "..") continue;
    PathKind kind = PathKind::other;
    switch (entry->d_type) {
    case DT_DIR: {
      // A folder mounted here (another volume, or a bind mount of any folder) is not part of
      // what is listed: nothing is found in it, and it is never offered itself.
      platform::EntryStatus status;
      if (!platform::statEntry(fd, name.c_str(), status)) kind = PathKind::missing;
      else if (!status.isMountRoot) kind = PathKind::directory;
      break;
    }
    case DT_REG: kind = PathKind::file; break;
    case DT_LNK: kind = PathKind::symlink; break;
    case DT_UNKNOWN: {
      platform::EntryStatus status;
      kind = platform::statEntry(fd, name.c_str(), status) ? kindOf(status.info.st_mode) : PathKind::missing;
      if (kind == PathKind::directory && status.isMountRoot) kind = PathKind::other;
      break;
    }
    default: break;
    }
    if (kind == PathKind::missing) continue; // gone between listing and looking
    entries.push_back(DirectoryEntry{name, kind});
  }
  ::closedir(dir);
  return entries;
}

std::optional<TimePoint> modificationTime(const std::string& path) {
  struct stat info {};
  if (::lstat(path.c_str(), &info) != 0) return std::nullopt;
#if defined(__APPLE__)
  const timespec& time = info.st_mtimespec;
#else
  const timespec& time = info.st_mtim;
#endif
  const auto sinceEpoch = std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
  return TimePoint(std::chrono::duration_cast<TimePoint::duration>(sinceEpoch));
}

bool isNewerThan(const std::string& path, TimePoint cutoff) {
  const auto time = modificationTime(path);
  return time && *time > cutoff;
}

bool isDirectoryBelow(const std::string& base, const std::string& relative) {
  if (pathKind(base) != PathKind::directory) return false;
  std::string path = base;
  std::size_t start = 0;
  while (start < relative.size()) {
    auto slash = relative.find('/', start);
    if (slash == std::string::npos) slash = relative.size();
    path += '/';
    path.append(relative, start, slash - start);
    if (pathKind(path) != PathKind::directory) return false;
    start = slash + 1;
  }
  return true;
}

std::string lastComponent(const std::string& path) {
  const auto slash = path.find_last_of('/');
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

std::string parentPath(const std::string& path) {
  const auto slash = path.find_last_of('/');
  if (slash == std::string::npos) return {};
  if (slash == 0) return "/";
  return path.substr(0, slash);
}

bool startsWithIgnoringCase(std::string_view text, std::string_view prefix) {
  if (text.size() < prefix.size()) return false;
  for (std::size_t i = 0; i < prefix.size(); ++i) {
    if (std::tolower(static_cast<unsigned char>(text[i])) != std::tolower(static_cast<unsigned char>(prefix[i]))) {
      return false;
    }
  }
  return true;
}

} // namespace halcyra::clean
