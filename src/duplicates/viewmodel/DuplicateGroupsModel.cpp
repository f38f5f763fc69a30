#include "duplicates/viewmodel/DuplicateGroupsModel.h"

#include "core/ByteFormatter.h"
#include "duplicates/viewmodel/FileIcons.h"

namespace halcyra::duplicates {

DuplicateGroupsModel::DuplicateGroupsModel(const std::vector<DuplicateGroup>& groups, QObject* parent)
    : QAbstractListModel(parent), groups_(groups) {}

void DuplicateGroupsModel::setSearchText(const QString& text) {
  if (text == searchText_) return;
  searchText_ = text;
  reload();
  emit searchTextChanged();
}

void DuplicateGroupsModel::refilter() {
  shown_.clear();
  for (std::size_t i = 0; i < groups_.size(); ++i) {
    if (searchText_.isEmpty() ||
        QString::fromStdString(groups_[i].representativeFileName).contains(searchText_, Qt::CaseInsensitive)) {
      shown_.push_back(i);
    }
  }
}

void DuplicateGroupsModel::reload() {
  beginResetModel();
  refilter();
  endResetModel();
}

void DuplicateGroupsModel::selectionChanged(const QString& groupId) {
  if (shown_.empty()) return;
  if (groupId.isEmpty()) {
    emit dataChanged(index(0), index(static_cast<int>(shown_.size()) - 1), {WastedTextRole, SelectedCountRole});
    return;
  }
  const std::string key = groupId.toStdString();
  for (std::size_t row = 0; row < shown_.size(); ++row) {
    if (groups_[shown_[row]].id != key) continue;
    const QModelIndex changed = index(static_cast<int>(row));
    emit dataChanged(changed, changed, {WastedTextRole, SelectedCountRole});
    return;
  }
}

int DuplicateGroupsModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(shown_.size());
}

QVariant DuplicateGroupsModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() < 0 || static_cast<std::size_t>(index.row()) >= shown_.size()) return {};
  const DuplicateGroup& group = groups_[shown_[static_cast<std::size_t>(index.row())]];
  switch (role) {
  case GroupIdRole: return QString::fromStdString(group.id);
  case NameRole: return QString::fromStdString(group.representativeFileName);
  case IconRole: {
    const std::string_view icon = fileIcon(group.representativeFileName);
    return QString::fromUtf8(icon.data(), static_cast<qsizetype>(icon.size()));
  }
  case CopiesRole: return static_cast<int>(group.files.size());
  case WastedTextRole: return QString::fromStdString(core::ByteFormatter::format(group.totalWastedSize()));
  case SelectedCountRole: return group.selectedCount();
  default: return {};
  }
}

QHash<int, QByteArray> DuplicateGroupsModel::roleNames() const {
  return {{GroupIdRole, "groupId"},       {NameRole, "name"},           {IconRole, "icon"},
          {CopiesRole, "copies"},         {WastedTextRole, "wastedText"}, {SelectedCountRole, "selectedCount"}};
}

QStringList DuplicateGroupsModel::groupIds() const {
  QStringList ids;
  for (const std::size_t i : shown_) ids.append(QString::fromStdString(groups_[i].id));
  return ids;
}

} // namespace halcyra::duplicates
