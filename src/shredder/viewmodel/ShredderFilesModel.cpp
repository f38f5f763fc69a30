#include "shredder/viewmodel/ShredderFilesModel.h"

#include <algorithm>

#include "core/ByteFormatter.h"

namespace halcyra::shredder {

ShredderFilesModel::ShredderFilesModel(QObject* parent) : QAbstractListModel(parent) {}

void ShredderFilesModel::append(std::vector<ShredderFile> records) {
  if (records.empty()) return;
  const int first = static_cast<int>(files_.size());
  beginInsertRows({}, first, first + static_cast<int>(records.size()) - 1);
  files_.insert(files_.end(), std::make_move_iterator(records.begin()), std::make_move_iterator(records.end()));
  endInsertRows();
}

bool ShredderFilesModel::toggle(const std::string& id) {
  const auto found = std::find_if(files_.begin(), files_.end(), [&](const auto& file) { return file.id == id; });
  if (found == files_.end()) return false;
  found->isSelected = !found->isSelected;
  const QModelIndex row = index(static_cast<int>(found - files_.begin()));
  emit dataChanged(row, row, {IsSelectedRole});
  return true;
}

bool ShredderFilesModel::remove(const std::string& id) {
  bool removed = false;
  // From the end, so the rows still to look at keep their numbers.
  for (auto i = static_cast<int>(files_.size()) - 1; i >= 0; --i) {
    if (files_[static_cast<std::size_t>(i)].id != id) continue;
    beginRemoveRows({}, i, i);
    files_.erase(files_.begin() + i);
    endRemoveRows();
    removed = true;
  }
  return removed;
}

void ShredderFilesModel::clear() {
  if (files_.empty()) return;
  beginResetModel();
  files_.clear();
  endResetModel();
}

int ShredderFilesModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(files_.size());
}

QVariant ShredderFilesModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() < 0 || index.row() >= static_cast<int>(files_.size())) return {};
  const ShredderFile& file = files_[static_cast<std::size_t>(index.row())];
  switch (role) {
  case FileIdRole: return QString::fromStdString(file.id);
  case NameRole:
  case Qt::DisplayRole: return QString::fromStdString(file.name);
  case PathRole: return QString::fromStdString(file.path);
  case SizeTextRole: return QString::fromStdString(core::ByteFormatter::format(file.size));
  case IsSelectedRole: return file.isSelected;
  default: return {};
  }
}

QHash<int, QByteArray> ShredderFilesModel::roleNames() const {
  return {{FileIdRole, "fileId"},
          {NameRole, "name"},
          {PathRole, "path"},
          {SizeTextRole, "sizeText"},
          {IsSelectedRole, "isSelected"}};
}

} // namespace halcyra::shredder
