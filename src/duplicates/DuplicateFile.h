#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace halcyra::duplicates {

/// A file's modification date: microseconds since 1970 in UTC. Nanoseconds would not reach
/// back to `distantPast`; microseconds do, and still order files written moments apart.
using FileDate = std::chrono::time_point<std::chrono::system_clock, std::chrono::microseconds>;

/// The date of a file that reports none: 0001-01-01 00:00:00 UTC.
constexpr FileDate distantPast() { return FileDate(std::chrono::microseconds(-62'135'596'800'000'000LL)); }

/// Which file a copy was when the scan listed it, beyond its size and date: device, inode,
/// number of names and the time its attributes last changed. All zero when not recorded.
struct FileStamp {
  std::uint64_t device = 0;
  std::uint64_t inode = 0;
  std::uint64_t links = 0;
  std::int64_t changeTimeNs = 0;
  bool isRecorded() const { return device != 0 || inode != 0; }
};

/// One copy in a group of identical files.
struct DuplicateFile {
  std::string id;            ///< fresh upper-case UUID text, per file and per scan
  std::string path;          ///< absolute path
  std::int64_t size = 0;     ///< the group's `fileSize`, the same for every member
  FileDate modificationDate = distantPast();
  bool isSelected = false;   ///< true: this copy is to be deleted
  FileStamp stamp = {};      ///< for the checks made right before a deletion
};

/// The stamp of what is at `path` now, looked at without following links; none when it is
/// not a regular file.
FileStamp currentStamp(const std::string& path, std::int64_t& size, FileDate& modified);

/// Whether the path is still a regular file of `file.size` bytes with the recorded
/// modification date and, when recorded, the same device, inode and attribute-change time,
/// looked at without following links. A copy that fails this has changed since the scan, and
/// nothing decided from the scan holds for it any more.
bool isUnchangedSinceScan(const DuplicateFile& file);

} // namespace halcyra::duplicates
