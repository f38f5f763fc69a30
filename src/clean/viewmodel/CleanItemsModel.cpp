#include "clean/viewmodel/CleanItemsModel.h"

#include "clean/PreviewLayout.h"
#include "core/ByteFormatter.h"

namespace halcyra::clean {

CleanItemsModel::CleanItemsModel(const std::vector<CleanCategory>& categories, QObject* parent)
    : QAbstractListModel(parent), categories_(categories) {}

void CleanItemsModel::setCategoryId(const QString& id) {
  if (id == categoryId_) return;
  beginResetModel();
  categoryId_ = id;
  endResetModel();
  emit categoryIdChanged();
}

const CleanCategory* CleanItemsModel::category() const {
  if (categoryId_.isEmpty()) return nullptr;
  const std::string id = categoryId_.toStdString();
  for (const auto& candidate : categories_) {
    if (candidate.id == id) return &candidate;
  }
  return nullptr;
}

int CleanItemsModel::rowCount(const QModelIndex& parent) const {
  if (parent.isValid()) return 0;
  const CleanCategory* current = category();
  return current ? static_cast<int>(current->items.size()) : 0;
}

QVariant CleanItemsModel::data(const QModelIndex& index, int role) const {
  const CleanCategory* current = category();
  if (!current || !index.isValid() || index.row() >= static_cast<int>(current->items.size())) return {};
  const CleanItem& item = current->items[static_cast<std::size_t>(index.row())];
  switch (role) {
  case ItemIdRole: return QString::fromStdString(item.id);
  case NameRole:
  case Qt::DisplayRole: {
    const QString path = QString::fromStdString(item.path);
    QString trimmed = path;
    while (trimmed.size() > 1 && trimmed.endsWith(QLatin1Char('/'))) trimmed.chop(1);
    return trimmed.mid(trimmed.lastIndexOf(QLatin1Char('/')) + 1);
  }
  case PathRole: return QString::fromStdString(item.path);
  case SizeTextRole: return QString::fromStdString(core::ByteFormatter::format(item.size));
  case IsSelectedRole: return item.isSelected;
  case IconRole: return QString::fromLatin1(fileIcon(item.path).data(), static_cast<int>(fileIcon(item.path).size()));
  default: return {};
  }
}

QHash<int, QByteArray> CleanItemsModel::roleNames() const {
  return {{ItemIdRole, "itemId"},   {NameRole, "name"},         {PathRole, "path"},
          {SizeTextRole, "sizeText"}, {IsSelectedRole, "isSelected"}, {IconRole, "icon"}};
}

void CleanItemsModel::reload() {
  beginResetModel();
  endResetModel();
}

void CleanItemsModel::selectionChanged(const QString& categoryId, int row) {
  if (categoryId != categoryId_) return;
  const int count = rowCount();
  if (count == 0) return;
  if (row >= 0 && row < count) {
    emit dataChanged(index(row), index(row), {IsSelectedRole});
  } else {
    emit dataChanged(index(0), index(count - 1), {IsSelectedRole});
  }
}

} // namespace halcyra::clean
