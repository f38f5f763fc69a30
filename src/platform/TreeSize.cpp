#include "platform/TreeSize.h"

#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace halcyra::platform {
namespace {

struct Frame {
  dev_t device = 0;
  ino_t inode = 0;
  std::vector<std::string> pendingSubdirectories; // visited from the back
};

constexpr int kDirectoryFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK;

// Lists `fd` (which it takes over), adds up its regular files, and returns the names of its
// sub-folders. The descriptor stays open through `keepFd` for descending.
std::vector<std::string> scanDirectory(int fd, bool skipHidden, std::int64_t& total, int& keepFd) {
  std::vector<std::string> subdirectories;
  keepFd = ::dup(fd);
  DIR* dir = ::fdopendir(fd);
  if (dir == nullptr) {
    ::close(fd);
    return subdirectories;
  }
  while (const dirent* entry = ::readdir(dir)) {
    const char* name = entry->d_name;
    if (name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'))) continue;
    if (skipHidden && name[0] == '.') continue;
    unsigned char type = entry->d_type;
    if (type == DT_DIR) {
      subdirectories.emplace_back(name);
      continue;
    }
    if (type != DT_REG && type != DT_UNKNOWN) continue; // links, FIFOs, sockets, devices
    struct stat info {};
    if (::fstatat(keepFd, name, &info, AT_SYMLINK_NOFOLLOW) != 0) continue;
    if (S_ISREG(info.st_mode)) total += info.st_size;
    else if (S_ISDIR(info.st_mode)) subdirectories.emplace_back(name);
  }
  ::closedir(dir);
  return subdirectories;
}

} // namespace

std::int64_t logicalTreeSize(const std::string& path, const TreeSizeOptions& options) {
  struct stat info {};
  if (::lstat(path.c_str(), &info) != 0) return 0;
  if (S_ISREG(info.st_mode)) return info.st_size;
  if (!S_ISDIR(info.st_mode)) return 0;

  std::int64_t total = 0;
  int fd = ::open(path.c_str(), kDirectoryFlags);
  if (fd < 0) return 0;
  std::vector<Frame> stack;
  int current = -1;
  {
    struct stat self {};
    ::fstat(fd, &self);
    Frame root{self.st_dev, self.st_ino, scanDirectory(fd, options.skipHidden, total, current)};
    stack.push_back(std::move(root));
  }
  while (!stack.empty() && current >= 0) {
    Frame& top = stack.back();
    if (!top.pendingSubdirectories.empty()) {
      const std::string name = std::move(top.pendingSubdirectories.back());
      top.pendingSubdirectories.pop_back();
      const int child = ::openat(current, name.c_str(), kDirectoryFlags);
      if (child < 0) continue;
      struct stat self {};
      if (::fstat(child, &self) != 0) {
        ::close(child);
        continue;
      }
      int childKeep = -1;
      Frame frame{self.st_dev, self.st_ino, scanDirectory(child, options.skipHidden, total, childKeep)};
      if (childKeep < 0) continue;
      ::close(current);
      current = childKeep;
      stack.push_back(std::move(frame));
      continue;
    }
    // Back up one level through "..", and make sure it is still the folder we came from:
    // a folder moved away during the walk ends that branch instead of measuring elsewhere.
    stack.pop_back();
    if (stack.empty()) break;
    const int parent = ::openat(current, "..", kDirectoryFlags);
    ::close(current);
    current = -1;
    if (parent < 0) break;
    struct stat self {};
    if (::fstat(parent, &self) != 0 || self.st_dev != stack.back().device || self.st_ino != stack.back().inode) {
      ::close(parent);
      break;
    }
    current = parent;
  }
  if (current >= 0) ::close(current);
  return total;
}

} // namespace halcyra::platform
