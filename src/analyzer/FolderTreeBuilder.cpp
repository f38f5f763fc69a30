#include "analyzer/FolderTreeBuilder.h"

#include "core/Uuid.h"

namespace halcyra::analyzer {

void FolderTreeBuilder::enterFolder(std::string_view name, std::string_view path) {
  ++depth_;
  if (depth_ - 1 > options_.levels) return;
  DirectoryNode* node = &root_;
  if (!open_.empty()) node = &open_.back()->children.emplace_back();
  if (options_.withIds) node->id = core::makeUuid();
  node->name = name;
  node->path = path;
  open_.push_back(node);
}

void FolderTreeBuilder::leaveFolder(const Totals& totals) {
  --depth_;
  if (depth_ > options_.levels) return;
  DirectoryNode& node = *open_.back();
  open_.pop_back();
  node.size = totals.size;
  node.fileCount = totals.fileCount;
  node.isPermissionDenied = totals.isPermissionDenied;
  node.children.shrink_to_fit(); // the tree is kept to the end: no spare room in it
  // A sub-folder that came to nothing is left out; the root always stays.
  if (!open_.empty() && node.size < 1) open_.back()->children.pop_back();
}

} // namespace halcyra::analyzer
