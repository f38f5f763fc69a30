#include "analyzer/viewmodel/DirectoryRowsModel.h"

#include <algorithm>

#include "core/ByteFormatter.h"

namespace halcyra::analyzer {

DirectoryRowsModel::DirectoryRowsModel(const std::set<std::string>& selectedPaths, QObject* parent)
    : QAbstractListModel(parent), selectedPaths_(selectedPaths) {}

void DirectoryRowsModel::setRows(std::vector<const DirectoryNode*> nodes, std::int64_t parentSize) {
  beginResetModel();
  nodes_ = std::move(nodes);
  parentSize_ = parentSize;
  endResetModel();
}

void DirectoryRowsModel::selectionChanged(const std::string& path) {
  if (nodes_.empty()) return;
  for (std::size_t row = 0; row < nodes_.size(); ++row) {
    if (!path.empty() && nodes_[row]->path != path) continue;
    const QModelIndex at = index(static_cast<int>(row));
    emit dataChanged(at, at, {IsSelectedRole});
  }
}

int DirectoryRowsModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(nodes_.size());
}

double DirectoryRowsModel::sharePercent(std::int64_t size, std::int64_t parentSize) {
  if (parentSize < 1) return 0;
  return static_cast<double>(size) / static_cast<double>(parentSize) * 100.0;
}

double DirectoryRowsModel::barWidth(double sharePercent) { return std::max(sharePercent * 80.0 / 100.0, 2.0); }

QVariant DirectoryRowsModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() < 0 || static_cast<std::size_t>(index.row()) >= nodes_.size()) return {};
  const DirectoryNode& node = *nodes_[static_cast<std::size_t>(index.row())];
  switch (role) {
  case IdRole: return QString::fromStdString(node.id);
  case NameRole: return QString::fromStdString(node.name);
  case PathRole: return QString::fromStdString(node.path);
  case SizeTextRole: return QString::fromStdString(core::ByteFormatter::format(node.size));
  case ShareRole: return sharePercent(node.size, parentSize_);
  case ShareTextRole: return QString::asprintf("%.1f%%", sharePercent(node.size, parentSize_));
  case BarWidthRole: return barWidth(sharePercent(node.size, parentSize_));
  case HasChildrenRole: return !node.children.empty();
  case IsPermissionDeniedRole: return node.isPermissionDenied;
  case IsSelectedRole: return selectedPaths_.count(node.path) > 0;
  default: return {};
  }
}

QHash<int, QByteArray> DirectoryRowsModel::roleNames() const {
  return {{IdRole, "nodeId"},
          {NameRole, "name"},
          {PathRole, "path"},
          {SizeTextRole, "sizeText"},
          {ShareRole, "share"},
          {ShareTextRole, "shareText"},
          {BarWidthRole, "barWidth"},
          {HasChildrenRole, "hasChildren"},
          {IsPermissionDeniedRole, "isPermissionDenied"},
          {IsSelectedRole, "isSelected"}};
}

} // namespace halcyra::analyzer
