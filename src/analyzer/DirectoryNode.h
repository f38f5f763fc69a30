#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace halcyra::analyzer {

/// One folder of the size tree, owning its sub-folders. Files are never nodes: a file adds to
/// the size of every folder above it, so the children of a node can add up to less than its size.
struct DirectoryNode {
  std::string id;   ///< fresh random UUID text
  std::string name; ///< last path component
  std::string path; ///< absolute path
  /// Allocated size of all regular files below this folder, at any depth.
  std::int64_t size = 0;
  /// The sub-folders with a size of at least 1, in the order the system listed them.
  std::vector<DirectoryNode> children;
  /// Regular files directly in this folder; 0 for a node at the depth limit.
  std::int64_t fileCount = 0;
  /// Listing the folder's contents failed. Only the root of a scan keeps this mark: any other
  /// such folder has size 0 and is left out of its parent's children.
  bool isPermissionDenied = false;
};

} // namespace halcyra::analyzer
