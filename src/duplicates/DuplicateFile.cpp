#include "duplicates/DuplicateFile.h"

#include <sys/stat.h>

namespace halcyra::duplicates {

FileStamp currentStamp(const std::string& path, std::int64_t& size, FileDate& modified) {
  struct stat info {};
  if (path.find('\0') != std::string::npos || ::lstat(path.c_str(), &info) != 0 || !S_ISREG(info.st_mode)) return {};
  size = static_cast<std::int64_t>(info.st_size);
  modified = FileDate(std::chrono::seconds(info.st_mtim.tv_sec) +
                      std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::nanoseconds(info.st_mtim.tv_nsec)));
  return FileStamp{static_cast<std::uint64_t>(info.st_dev), static_cast<std::uint64_t>(info.st_ino),
                   static_cast<std::uint64_t>(info.st_nlink),
                   static_cast<std::int64_t>(info.st_ctim.tv_sec) * 1'000'000'000 + info.st_ctim.tv_nsec};
}

bool isUnchangedSinceScan(const DuplicateFile& file) {
  std::int64_t size = -1;
  FileDate modified = distantPast();
  const FileStamp now = currentStamp(file.path, size, modified);
  if (!now.isRecorded() || size != file.size || modified != file.modificationDate) return false;
  if (!file.stamp.isRecorded()) return true;
  return now.device == file.stamp.device && now.inode == file.stamp.inode &&
         now.changeTimeNs == file.stamp.changeTimeNs;
}

} // namespace halcyra::duplicates
