#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

#include "duplicates/DuplicateFile.h"

namespace halcyra::duplicates {

/// Fixed-size records in chunks that never move: growing never copies what is stored, so
/// there is no moment with the old and the new array both in memory.
template <typename T, std::size_t kChunk = 1024>
class ChunkedArray {
public:
  std::size_t size() const { return size_; }
  T& operator[](std::size_t i) { return chunks_[i / kChunk][i % kChunk]; }
  const T& operator[](std::size_t i) const { return chunks_[i / kChunk][i % kChunk]; }
  void push_back(const T& value) {
    if (size_ % kChunk == 0) chunks_.push_back(std::make_unique_for_overwrite<T[]>(kChunk));
    chunks_.back()[size_ % kChunk] = value;
    ++size_;
  }

private:
  std::vector<std::unique_ptr<T[]>> chunks_;
  std::size_t size_ = 0;
};

/// Every regular file a walk found, as it was then, held compactly: a file is a fixed record
/// of its size, date, device and inode, its folder and its name; names live in one arena and
/// folders in a table that names each folder's parent. Paths are put together on demand.
///
/// The walk lists every regular file of at least `minFileSize` bytes below `root`, depth
/// first, a folder's own files before its sub-folders. It never indexes or follows a symbolic
/// link, skips hidden entries (names starting with "."), does not enter packages, and cuts
/// the folders and files named ".Trash", "node_modules", ".git", "DerivedData", "Build" and
/// ".build" at any depth. FIFOs, sockets and devices are never opened: only their names are
/// read. Entries that cannot be read are left out quietly.
class FileIndex {
public:
  /// Called once per indexed file with the running count.
  using IndexedCallback = std::function<void(std::size_t count)>;

  /// Files of one size: `files[begin, end)` of `SharedSizes`, in the order the walk found them.
  struct SizeRun {
    std::int64_t size = 0;
    std::uint32_t begin = 0;
    std::uint32_t end = 0;
  };
  /// The files whose size at least one other file has, grouped by size: sizes in the order
  /// their first file was found, each size's files in walk order. Entries are file numbers.
  struct SharedSizes {
    std::vector<std::uint32_t> files;
    std::vector<SizeRun> runs;
  };

  /// The walk below `root`; none when `root` cannot be opened as a folder.
  static std::optional<FileIndex> build(const std::string& root, std::int64_t minFileSize,
                                        const IndexedCallback& onIndexed);

  /// Whether the walk cuts an entry of this name, whatever its type.
  static bool isExcludedName(std::string_view name);

  /// Files are numbered 0 to `size() - 1` in walk order.
  std::size_t size() const { return files_.size(); }
  std::int64_t fileSize(std::size_t file) const { return files_[file].size; }
  FileDate modificationDate(std::size_t file) const { return FileDate(std::chrono::microseconds(files_[file].modified)); }
  dev_t device(std::size_t file) const;
  ino_t inode(std::size_t file) const { return files_[file].inode; }
  /// The last component of the file's path.
  std::string_view name(std::size_t file) const { return names_.at(files_[file].name); }
  /// Replaces `out` with the file's absolute path (as below the root that was given).
  void path(std::size_t file, std::string& out) const;
  std::string path(std::size_t file) const;

  SharedSizes sharedSizes() const;

private:
  // A name is a byte offset into the arena; names never straddle two chunks.
  class NameArena {
  public:
    std::uint32_t add(std::string_view name);
    std::string_view at(std::uint32_t handle) const;

  private:
    static constexpr std::size_t kChunk = std::size_t{64} << 10;
    std::vector<std::unique_ptr<char[]>> chunks_;
    std::vector<std::uint32_t> starts_; // the handle of each chunk's first byte
    std::size_t used_ = kChunk;         // bytes used in the last chunk
    std::size_t capacity_ = kChunk;
  };
  struct FileRecord {
    std::int64_t size;
    std::int64_t modified; // microseconds since 1970, UTC
    ino_t inode;
    std::uint32_t folder;
    std::uint32_t name;
  };
  struct Folder {
    std::uint32_t parent; // the root is its own parent
    std::uint32_t name;   // the root's "name" is its whole path
  };

  void folderPath(std::uint32_t folder, std::string& out) const;
  void noteDevice(dev_t device);

  ChunkedArray<FileRecord> files_;
  ChunkedArray<Folder, 4096> folders_;
  NameArena names_;
  // (first file, device) wherever the device changes from one file to the next in walk
  // order: one entry unless the tree spans file systems.
  std::vector<std::pair<std::uint32_t, dev_t>> deviceRuns_;
};

} // namespace halcyra::duplicates
