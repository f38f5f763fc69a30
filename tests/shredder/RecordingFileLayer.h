#pragma once

#include <cerrno>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>
#include <sys/stat.h>
#include <unistd.h>

#include "shredder/FileLayer.h"

namespace halcyra::shredder::testing {

/// The real file calls, watched: every write of the file stage is recorded, the whole file
/// is read back at every sync (what the stage left on the disk), and the fill files are
/// listed with the bytes written to each. Chosen calls can be made to fail like a broken or
/// full disk.
class RecordingFileLayer : public FileLayer {
public:
  struct Write {
    std::int64_t offset;
    std::size_t length;
  };
  struct FillFile {
    std::string path;
    std::size_t bytes = 0;
  };

  std::vector<Write> writes;          ///< file stage, in order
  std::vector<std::string> snapshots; ///< file contents at each sync of the file stage
  std::vector<FillFile> fillFiles;

  std::optional<std::size_t> failFileWrite; ///< index into `writes` that fails with EIO
  std::optional<std::size_t> failFillWrite; ///< index of the fill file whose write fails with ENOSPC
  bool failCreate = false;                  ///< every fill file creation fails with EROFS
  bool discardFillWrites = false;           ///< report fill writes done without writing
  bool skipFileIo = false;                  ///< reads and writes of the file stage only pretend
  bool snapshotOnSync = true;

  ssize_t readAt(int fd, unsigned char* data, std::size_t length, std::int64_t offset) override {
    if (skipFileIo) return static_cast<ssize_t>(length);
    return FileLayer::readAt(fd, data, length, offset);
  }

  ssize_t writeAt(int fd, const unsigned char* data, std::size_t length, std::int64_t offset) override {
    if (isFillFile(fd)) {
      if (failFillWrite && *failFillWrite == fillFiles.size() - 1) {
        errno = ENOSPC;
        return -1;
      }
      fillFiles.back().bytes += length;
      if (discardFillWrites) return static_cast<ssize_t>(length);
      return FileLayer::writeAt(fd, data, length, offset);
    }
    if (failFileWrite && *failFileWrite == writes.size()) {
      writes.push_back({offset, length});
      errno = EIO;
      return -1;
    }
    writes.push_back({offset, length});
    if (skipFileIo) return static_cast<ssize_t>(length);
    return FileLayer::writeAt(fd, data, length, offset);
  }

  int syncData(int fd) override {
    if (!isFillFile(fd) && snapshotOnSync) snapshots.push_back(contents(fd));
    return skipFileIo ? 0 : FileLayer::syncData(fd);
  }

  // The folder a descriptor stands for, as the system names it.
  static std::string folderPath(int folder) {
    std::string buffer(4096, '\0');
    const ssize_t length = ::readlink(("/proc/self/fd/" + std::to_string(folder)).c_str(), buffer.data(), buffer.size());
    return length > 0 ? buffer.substr(0, static_cast<std::size_t>(length)) : std::string();
  }

  int createExclusive(int folder, const std::string& name) override {
    if (failCreate) {
      errno = EROFS;
      return -1;
    }
    const int fd = FileLayer::createExclusive(folder, name);
    if (fd >= 0) fillFiles.push_back({folderPath(folder) + "/" + name, 0});
    return fd;
  }

  /// Fill files are told apart by inode (descriptor numbers are reused), and only while the
  /// fill file is still there (inodes are reused too, once it is deleted).
  bool isFillFile(int fd) const {
    struct stat st {};
    if (fillFiles.empty() || ::fstat(fd, &st) != 0) return false;
    for (const auto& fill : fillFiles) {
      struct stat named {};
      if (::lstat(fill.path.c_str(), &named) == 0 && named.st_ino == st.st_ino && named.st_dev == st.st_dev) {
        return true;
      }
    }
    return false;
  }

  /// Every byte of the open file.
  static std::string contents(int fd) {
    struct stat st {};
    if (::fstat(fd, &st) != 0) return {};
    std::string bytes(static_cast<std::size_t>(st.st_size), '\0');
    std::size_t done = 0;
    while (done < bytes.size()) {
      const ssize_t n = ::pread(fd, bytes.data() + done, bytes.size() - done, static_cast<off_t>(done));
      if (n <= 0) break;
      done += static_cast<std::size_t>(n);
    }
    bytes.resize(done);
    return bytes;
  }
};

} // namespace halcyra::shredder::testing
