#include "shredder/FileLayer.h"

#include <fcntl.h>
#include <unistd.h>

namespace halcyra::shredder {

ssize_t FileLayer::readAt(int fd, unsigned char* data, std::size_t length, std::int64_t offset) {
  return ::pread(fd, data, length, static_cast<off_t>(offset));
}

ssize_t FileLayer::writeAt(int fd, const unsigned char* data, std::size_t length, std::int64_t offset) {
  return ::pwrite(fd, data, length, static_cast<off_t>(offset));
}

void FileLayer::startWriteback([[maybe_unused]] int fd, [[maybe_unused]] std::int64_t offset,
                               [[maybe_unused]] std::int64_t length) {
#if defined(SYNC_FILE_RANGE_WRITE)
  ::sync_file_range(fd, static_cast<off_t>(offset), static_cast<off_t>(length), SYNC_FILE_RANGE_WRITE);
#endif
}

int FileLayer::syncData(int fd) {
#if defined(__APPLE__)
  return ::fsync(fd); // no fdatasync there
#else
  return ::fdatasync(fd);
#endif
}

int FileLayer::truncate(int fd, std::int64_t length) { return ::ftruncate(fd, static_cast<off_t>(length)); }

int FileLayer::createExclusive(int folder, const std::string& name) {
  return ::openat(folder, name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
}

} // namespace halcyra::shredder
