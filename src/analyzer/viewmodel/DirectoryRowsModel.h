#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include <QAbstractListModel>
#include <QString>

#include "analyzer/DirectoryNode.h"

namespace halcyra::analyzer {

/// The rows under the treemap: the sub-folders of the folder on screen, in display order, each
/// with its share of that folder and its check mark. It points into the view model's tree and
/// reads the view model's selection in place; the view model tells it when either changes.
class DirectoryRowsModel : public QAbstractListModel {
  Q_OBJECT

public:
  enum Role {
    IdRole = Qt::UserRole + 1, ///< how screens name the node back to the view model
    NameRole,
    PathRole,
    SizeTextRole,
    ShareRole,     ///< percentage of the parent, unrounded
    ShareTextRole, ///< the same with one decimal, "12.5%"
    BarWidthRole,  ///< points
    HasChildrenRole,
    IsPermissionDeniedRole,
    IsSelectedRole,
  };

  explicit DirectoryRowsModel(const std::set<std::string>& selectedPaths, QObject* parent = nullptr);

  /// New rows: the nodes must outlive them (they live in the view model's scan result).
  void setRows(std::vector<const DirectoryNode*> nodes, std::int64_t parentSize);
  /// Check marks changed: one row's, or every row's when `path` is empty.
  void selectionChanged(const std::string& path = {});

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QHash<int, QByteArray> roleNames() const override;

  /// A row's share of its parent in percent: 0 when the parent has no size.
  static double sharePercent(std::int64_t size, std::int64_t parentSize);
  /// The bar under the share: 80 points at 100 %, never thinner than 2.
  static double barWidth(double sharePercent);

private:
  const std::set<std::string>& selectedPaths_;
  std::vector<const DirectoryNode*> nodes_;
  std::int64_t parentSize_ = 1;
};

} // namespace halcyra::analyzer
