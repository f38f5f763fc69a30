#pragma once

#include <chrono>
#include <string>
#include <vector>

#include <sys/stat.h>

#include "duplicates/DuplicateGroup.h"
#include "support/TempDir.h"

namespace halcyra::testing {

/// 2024-01-01 plus `days`.
inline duplicates::FileDate day(int days) {
  return duplicates::FileDate(std::chrono::microseconds(1'704'067'200'000'000LL) + std::chrono::hours(24 * days));
}

/// A copy that exists only as a record.
inline duplicates::DuplicateFile copyOf(std::string id, std::string path, int days, bool selected) {
  return duplicates::DuplicateFile{std::move(id), std::move(path), 4096, day(days), selected};
}

/// A group as the scan gives it: files as listed, each 4096 bytes.
inline duplicates::DuplicateGroup groupOf(std::string id, std::string name, std::vector<duplicates::DuplicateFile> files) {
  duplicates::DuplicateGroup group;
  group.id = std::move(id);
  group.fileHash = "0123456789ab";
  group.representativeFileName = std::move(name);
  group.fileSize = 4096;
  group.files = std::move(files);
  return group;
}

/// A copy written to disk, 4096 bytes, `secondsAgo` old, recorded as a scan would see it now.
inline duplicates::DuplicateFile copyOnDisk(const TempDir& dir, const std::string& relative, std::int64_t secondsAgo,
                                            bool selected) {
  const std::string path = dir.file(relative, 4096);
  TempDir::setAge(path, secondsAgo);
  struct stat info {};
  ::lstat(path.c_str(), &info);
  const auto modified = std::chrono::seconds(info.st_mtim.tv_sec) +
                        std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::nanoseconds(info.st_mtim.tv_nsec));
  return duplicates::DuplicateFile{relative, path, 4096, duplicates::FileDate(modified), selected};
}

} // namespace halcyra::testing
