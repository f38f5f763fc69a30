#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <sys/types.h>

namespace halcyra::shredder {

/// The few calls through which the shredder reads and writes file contents. The default is
/// the plain POSIX calls on the descriptor; a test puts a double in its place to see every
/// write and every sync, or to make one of them fail the way a full or broken disk does.
/// Each call reports like its POSIX counterpart: -1 and errno on failure.
class FileLayer {
public:
  virtual ~FileLayer() = default;

  /// pread: up to `length` bytes at `offset`.
  virtual ssize_t readAt(int fd, unsigned char* data, std::size_t length, std::int64_t offset);
  /// pwrite: up to `length` bytes at `offset`.
  virtual ssize_t writeAt(int fd, const unsigned char* data, std::size_t length, std::int64_t offset);
  /// Starts writing a range to the disk without waiting for it, so that the disk works while
  /// the next chunk is made; the sync at the end of a stage then has little left to wait
  /// for. Only a hint: where the system has no such call it does nothing.
  virtual void startWriteback(int fd, std::int64_t offset, std::int64_t length);
  /// fdatasync: the written data (and the size) on the disk.
  virtual int syncData(int fd);
  /// ftruncate.
  virtual int truncate(int fd, std::int64_t length);
  /// A new file `name` in the open folder `folder`, for writing, never an existing one and
  /// never through a link; the descriptor.
  virtual int createExclusive(int folder, const std::string& name);
};

} // namespace halcyra::shredder
