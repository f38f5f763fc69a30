#include "duplicates/DuplicateFile.h"

#include <sys/stat.h>

namespace halcyra::duplicates {

bool isUnchangedSinceScan(const DuplicateFile& file) {
  struct stat info {};
  if (::lstat(file.path.c_str(), &info) != 0 || !S_ISREG(info.st_mode)) return false;
  if (static_cast<std::int64_t>(info.st_size) != file.size) return false;
  const auto modified = std::chrono::seconds(info.st_mtim.tv_sec) +
                        std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::nanoseconds(info.st_mtim.tv_nsec));
  return FileDate(modified) == file.modificationDate;
}

} // namespace halcyra::duplicates
