#pragma once

#include <set>
#include <string>
#include <vector>

#include <QAbstractListModel>

#include "startup/StartupItem.h"

namespace halcyra::startup {

/// The rows of the list in view: the items of the selected category in their order, each with
/// whether its switch command is running.
class StartupItemsModel : public QAbstractListModel {
  Q_OBJECT

public:
  enum Role { ItemIdRole = Qt::UserRole + 1, NameRole, PathRole, IsEnabledRole, IsTogglingRole, IconSourceRole };

  explicit StartupItemsModel(QObject* parent = nullptr);

  const std::vector<StartupItem>& items() const noexcept { return items_; }
  /// Shows another list, from its top.
  void setItems(std::vector<StartupItem> items, const std::set<std::string>& toggling);
  /// The row of the item with this id changed (its switch, or whether it is being switched).
  void update(const StartupItem& item, bool isToggling);
  void setToggling(const std::string& id, bool isToggling);

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QHash<int, QByteArray> roleNames() const override;

private:
  int rowOf(const std::string& id) const;

  std::vector<StartupItem> items_;
  std::set<std::string> toggling_;
};

} // namespace halcyra::startup
