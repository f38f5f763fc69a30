#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace halcyra::platform {

/// How a tree is measured.
struct TreeSizeOptions {
  /// Leave out every entry whose name begins with "." and all that is below it.
  bool skipHidden = true;
};

/// The sum of the logical sizes of the regular files at and below `path`. A file gives its own
/// size; a symbolic link is never followed and counts nothing, whether it is `path` itself or
/// inside the tree; FIFOs, sockets and devices count nothing and are never opened. Unreadable
/// folders and vanishing entries add nothing. The walk keeps no recursion on the call stack and
/// holds a bounded number of directory descriptors, so any depth is measured.
std::int64_t logicalTreeSize(const std::string& path, const TreeSizeOptions& options = {});

/// Measures many trees for one scan, by the rules of `logicalTreeSize`.
///
/// A sizer remembers the folders it has measured (by device and inode, up to a few levels
/// below each measured path), so a folder that is reached again, as a path of its own or
/// inside a larger tree, is not walked a second time. What a folder is found to hold is fixed
/// for the life of the sizer: make one per scan.
///
/// A batch is measured by `threads` workers, the calling thread among them: whole paths are
/// handed out first, then sub-folders of a large tree go to a worker that has run out of work.
/// The results do not depend on the number of workers.
class TreeSizer {
public:
  explicit TreeSizer(unsigned threads = 2, TreeSizeOptions options = {});
  ~TreeSizer();
  TreeSizer(const TreeSizer&) = delete;
  TreeSizer& operator=(const TreeSizer&) = delete;

  /// The size of one path.
  std::int64_t size(const std::string& path);
  /// The sizes of several paths, in their order.
  std::vector<std::int64_t> sizes(const std::vector<std::string>& paths);

private:
  struct State;
  std::unique_ptr<State> state_;
};

} // namespace halcyra::platform
