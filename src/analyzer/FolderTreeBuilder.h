#pragma once

#include <vector>

#include "analyzer/DirectoryNode.h"
#include "analyzer/FolderSink.h"

namespace halcyra::analyzer {

/// Turns the folders of a scan into the tree of DirectoryNode records: sub-folders with a size
/// of at least 1 in listing order, the root kept whatever its size, with its permission mark.
class FolderTreeBuilder final : public FolderSink {
public:
  struct Options {
    /// Levels of sub-folders kept below the root; deeper folders still add to their
    /// ancestors' sizes, which the walk has already done.
    int levels = 1 << 30;
    /// Gives every node a fresh random id.
    bool withIds = true;
  };

  FolderTreeBuilder() = default;
  explicit FolderTreeBuilder(Options options) : options_(options) {}

  void enterFolder(std::string_view name, std::string_view path) override;
  void leaveFolder(const Totals& totals) override;

  /// The tree, once the scan has returned.
  DirectoryNode takeRoot() { return std::move(root_); }

private:
  Options options_;
  DirectoryNode root_;
  std::vector<DirectoryNode*> open_; // the folders entered and not left, down to `levels`
  int depth_ = 0;                    // all folders entered and not left
};

} // namespace halcyra::analyzer
