#pragma once

#include <vector>

#include <QAbstractListModel>
#include <QString>

#include "duplicates/DuplicateGroup.h"

namespace halcyra::duplicates {

/// The result screen's list of groups, narrowed by the search text. It reads the view model's
/// groups in place; the view model tells it when they or a group's selection change.
///
/// Only a group's representative name is searched, case-insensitively, so a search never
/// matches a group by a folder name the row does not show.
class DuplicateGroupsModel : public QAbstractListModel {
  Q_OBJECT
  Q_PROPERTY(QString searchText READ searchText WRITE setSearchText NOTIFY searchTextChanged)

public:
  enum Role { GroupIdRole = Qt::UserRole + 1, NameRole, IconRole, CopiesRole, WastedTextRole, SelectedCountRole };

  explicit DuplicateGroupsModel(const std::vector<DuplicateGroup>& groups, QObject* parent = nullptr);

  QString searchText() const { return searchText_; }
  void setSearchText(const QString& text);

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QHash<int, QByteArray> roleNames() const override;

  /// Ids of the groups shown, in order.
  QStringList groupIds() const;

  /// The groups were replaced: filter them afresh.
  void reload();
  /// The selection of one group changed, or of all when `groupId` is empty.
  void selectionChanged(const QString& groupId = {});

signals:
  void searchTextChanged();

private:
  void refilter();

  const std::vector<DuplicateGroup>& groups_;
  QString searchText_;
  std::vector<std::size_t> shown_; ///< indices into `groups_`
};

} // namespace halcyra::duplicates
