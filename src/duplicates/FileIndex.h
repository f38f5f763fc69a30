#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

#include "duplicates/DuplicateFile.h"

namespace halcyra::duplicates {

/// A regular file the walk found, as it was then.
struct IndexedFile {
  std::string path;
  std::int64_t size = 0;
  FileDate modificationDate = distantPast();
  dev_t device = 0; ///< with `inode`, tells hard links apart from copies
  ino_t inode = 0;
};

/// Files of one size, in the order the walk found them.
struct SizeGroup {
  std::int64_t size = 0;
  std::vector<IndexedFile> files;
};

/// The walk that feeds a duplicate scan.
///
/// Lists every regular file of at least `minFileSize` bytes below `root`, depth first, a
/// folder's own files before its sub-folders. Never indexes or follows a symbolic link, skips
/// hidden entries (names starting with "."), does not enter packages, and cuts the folders
/// and files named ".Trash", "node_modules", ".git", "DerivedData", "Build" and ".build" at
/// any depth. FIFOs, sockets and devices are never opened: only their names are read.
/// Entries that cannot be read are left out quietly.
class FileIndex {
public:
  /// Called once per indexed file with the running count.
  using IndexedCallback = std::function<void(std::size_t count)>;

  /// The size table with every size that fewer than two files have dropped, sizes in the
  /// order their first file was found. None when `root` cannot be opened as a folder.
  static std::optional<std::vector<SizeGroup>> sharedSizes(const std::string& root, std::int64_t minFileSize,
                                                           const IndexedCallback& onIndexed);

  /// Whether the walk cuts an entry of this name, whatever its type.
  static bool isExcludedName(std::string_view name);
};

} // namespace halcyra::duplicates
