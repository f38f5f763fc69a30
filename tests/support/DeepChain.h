#pragma once

#include <fcntl.h>
#include <string>
#include <unistd.h>

namespace halcyra::testing {

/// `levels` nested folders named `segment` below `base`, made and removed through descriptors,
/// so that their paths may run far past PATH_MAX. Every `fileEvery`-th folder from `base` down
/// gets a file named "file" holding `content`.
class DeepChain {
public:
  DeepChain(std::string base, int levels, std::string segment, int fileEvery, const std::string& content)
      : base_(std::move(base)), levels_(levels), segment_(std::move(segment)) {
    int fd = ::open(base_.c_str(), O_RDONLY | O_DIRECTORY);
    for (int level = 0; level < levels_; ++level) {
      if (level % fileEvery == 0) {
        const int file = ::openat(fd, "file", O_WRONLY | O_CREAT | O_TRUNC, 0644);
        ok_ = ok_ && ::write(file, content.data(), content.size()) == static_cast<ssize_t>(content.size());
        ::close(file);
      }
      ok_ = ok_ && ::mkdirat(fd, segment_.c_str(), 0755) == 0;
      const int next = ::openat(fd, segment_.c_str(), O_RDONLY | O_DIRECTORY);
      ::close(fd);
      fd = next;
    }
    ::close(fd);
  }

  /// Down to the bottom, then back up through "..", taking each level away on the way.
  ~DeepChain() {
    int fd = ::open(base_.c_str(), O_RDONLY | O_DIRECTORY);
    for (int level = 0; level < levels_; ++level) {
      const int next = ::openat(fd, segment_.c_str(), O_RDONLY | O_DIRECTORY);
      ::close(fd);
      fd = next;
    }
    for (int level = levels_; level > 0; --level) {
      ::unlinkat(fd, "file", 0);
      const int parent = ::openat(fd, "..", O_RDONLY | O_DIRECTORY);
      ::close(fd);
      ::unlinkat(parent, segment_.c_str(), AT_REMOVEDIR);
      fd = parent;
    }
    ::unlinkat(fd, "file", 0);
    ::close(fd);
  }

  DeepChain(const DeepChain&) = delete;
  DeepChain& operator=(const DeepChain&) = delete;

  /// Whether every folder and file was made.
  bool made() const { return ok_; }

private:
  std::string base_;
  int levels_;
  std::string segment_;
  bool ok_ = true;
};

} // namespace halcyra::testing
