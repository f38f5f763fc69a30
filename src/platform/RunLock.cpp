#include "platform/RunLock.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "platform/SystemPaths.h"

namespace halcyra::platform {
namespace {

// A folder for the lock that only this user can write, so that nobody else can hold it or
// plant a link in its place.
bool isPrivateFolder(const std::string& path) {
  struct stat info {};
  return !path.empty() && ::lstat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode) && info.st_uid == ::geteuid() &&
         (info.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

} // namespace

std::string RunLock::lockFilePath(const SystemPaths& paths) {
  if (const char* runtime = std::getenv("XDG_RUNTIME_DIR"); runtime != nullptr && isPrivateFolder(runtime)) {
    return std::string(runtime) + "/halcyra-destructive.lock";
  }
  return paths.home() + "/.halcyra-destructive.lock";
}

std::optional<RunLock> RunLock::acquire(const SystemPaths& paths, const std::function<void()>& onWait) {
  const std::string path = lockFilePath(paths);
  const int fd = ::open(path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600);
  if (fd < 0) return std::nullopt;
  if (::flock(fd, LOCK_EX | LOCK_NB) != 0) {
    if (onWait) onWait();
    while (::flock(fd, LOCK_EX) != 0) {
      if (errno != EINTR) {
        ::close(fd);
        return std::nullopt;
      }
    }
  }
  return RunLock(fd);
}

RunLock::RunLock(RunLock&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}

RunLock& RunLock::operator=(RunLock&& other) noexcept {
  if (this != &other) {
    if (fd_ >= 0) ::close(fd_);
    fd_ = std::exchange(other.fd_, -1);
  }
  return *this;
}

RunLock::~RunLock() {
  if (fd_ >= 0) ::close(fd_);
}

} // namespace halcyra::platform
