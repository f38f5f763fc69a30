#include "platform/MachineIdentifier.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace halcyra::platform {

std::optional<std::string> MachineIdentifier::hardwareUUID(const SystemPaths& paths) {
  const int fd = ::open(paths.system("/etc/machine-id").c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  if (fd < 0) return std::nullopt;
  struct stat info {};
  char buffer[64];
  ssize_t count = -1;
  if (::fstat(fd, &info) == 0 && S_ISREG(info.st_mode)) {
    do {
      count = ::read(fd, buffer, sizeof buffer);
    } while (count < 0 && errno == EINTR);
  }
  ::close(fd);
  if (count < 32) return std::nullopt;
  std::string id(buffer, static_cast<std::size_t>(count));
  while (!id.empty() && (id.back() == '\n' || id.back() == ' ')) id.pop_back();
  // An empty or "uninitialized" file stands for a first boot that has not written one yet.
  if (id.size() != 32 || id.find_first_not_of("0123456789abcdef") != std::string::npos) return std::nullopt;
  return id;
}

} // namespace halcyra::platform
