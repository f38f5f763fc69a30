#pragma once

#include <cstdint>
#include <string>

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
/// holds one directory descriptor at a time, so any depth is measured.
std::int64_t logicalTreeSize(const std::string& path, const TreeSizeOptions& options = {});

} // namespace halcyra::platform
