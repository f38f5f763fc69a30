#include "platform/RunningApplications.h"

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace halcyra::platform {
namespace {

// The text of a small /proc file up to its first NUL (the first argument of a command line).
std::string readSmallFile(const std::string& path) {
  std::string text;
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return text;
  char buffer[4096];
  for (;;) {
    const ssize_t count = ::read(fd, buffer, sizeof buffer);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) break;
    text.append(buffer, static_cast<std::size_t>(count));
    if (text.find('\0') != std::string::npos || text.size() > 65536) break;
  }
  ::close(fd);
  if (const auto end = text.find('\0'); end != std::string::npos) text.resize(end);
  while (!text.empty() && (text.back() == '\n' || text.back() == '\0')) text.pop_back();
  return text;
}

std::string baseName(const std::string& path) {
  const auto slash = path.find_last_of('/');
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

} // namespace

std::set<std::string> SystemRunningApplications::snapshotRunningAppNames() {
  std::set<std::string> names;
  DIR* proc = ::opendir("/proc");
  if (proc == nullptr) return names;
  const uid_t me = ::getuid();
  while (const dirent* entry = ::readdir(proc)) {
    const std::string pid = entry->d_name;
    if (pid.empty() || pid.find_first_not_of("0123456789") != std::string::npos) continue;
    struct stat info {};
    if (::stat(("/proc/" + pid).c_str(), &info) != 0 || info.st_uid != me) continue;
    // The kernel's name is cut at 15 characters; the first argument carries the whole one.
    if (std::string comm = readSmallFile("/proc/" + pid + "/comm"); !comm.empty()) {
      names.insert(toLowerAscii(comm));
    }
    if (std::string argv0 = baseName(readSmallFile("/proc/" + pid + "/cmdline")); !argv0.empty()) {
      names.insert(toLowerAscii(argv0));
    }
  }
  ::closedir(proc);
  return names;
}

} // namespace halcyra::platform
