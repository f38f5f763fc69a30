#include "startup/viewmodel/StartupItemsModel.h"

#include <QUrl>

namespace halcyra::startup {
namespace {

// Only pictures the window can draw itself stand as icons; a bundle or a program gets the
// generic symbol instead.
QString iconSource(const std::optional<std::string>& icon) {
  if (!icon) return {};
  for (const char* extension : {".png", ".svg", ".jpg", ".jpeg"}) {
    if (icon->ends_with(extension)) return QUrl::fromLocalFile(QString::fromStdString(*icon)).toString();
  }
  return {};
}

} // namespace

StartupItemsModel::StartupItemsModel(QObject* parent) : QAbstractListModel(parent) {}

void StartupItemsModel::setItems(std::vector<StartupItem> items, const std::set<std::string>& toggling) {
  beginResetModel();
  items_ = std::move(items);
  toggling_ = toggling;
  endResetModel();
}

int StartupItemsModel::rowOf(const std::string& id) const {
  for (std::size_t row = 0; row < items_.size(); ++row) {
    if (items_[row].id == id) return static_cast<int>(row);
  }
  return -1;
}

void StartupItemsModel::update(const StartupItem& item, bool isToggling) {
  const int row = rowOf(item.id);
  if (row < 0) return;
  items_[static_cast<std::size_t>(row)] = item;
  if (isToggling) toggling_.insert(item.id);
  else toggling_.erase(item.id);
  emit dataChanged(index(row), index(row));
}

void StartupItemsModel::setToggling(const std::string& id, bool isToggling) {
  if (isToggling) toggling_.insert(id);
  else toggling_.erase(id);
  const int row = rowOf(id);
  if (row >= 0) emit dataChanged(index(row), index(row), {IsTogglingRole});
}

int StartupItemsModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(items_.size());
}

QVariant StartupItemsModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() >= rowCount()) return {};
  const StartupItem& item = items_[static_cast<std::size_t>(index.row())];
  switch (role) {
  case ItemIdRole: return QString::fromStdString(item.id);
  case Qt::DisplayRole:
  case NameRole: return QString::fromStdString(item.name);
  case PathRole: return QString::fromStdString(item.path);
  case IsEnabledRole: return item.isEnabled;
  case IsTogglingRole: return toggling_.contains(item.id);
  case IconSourceRole: return iconSource(item.icon);
  default: return {};
  }
}

QHash<int, QByteArray> StartupItemsModel::roleNames() const {
  return {{ItemIdRole, "itemId"},       {NameRole, "name"},         {PathRole, "path"},
          {IsEnabledRole, "isEnabled"}, {IsTogglingRole, "isToggling"}, {IconSourceRole, "iconSource"}};
}

} // namespace halcyra::startup
