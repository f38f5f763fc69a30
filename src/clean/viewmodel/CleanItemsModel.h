#pragma once

#include <vector>

#include <QAbstractListModel>
#include <QString>

#include "clean/CleanItem.h"

namespace halcyra::clean {

/// The items of one category for the review sheet's list, with their check marks. It reads
/// the view model's categories in place; the view model tells it when they change, so a
/// toggle updates one row and keeps the list where it was scrolled.
class CleanItemsModel : public QAbstractListModel {
  Q_OBJECT
  Q_PROPERTY(QString categoryId READ categoryId WRITE setCategoryId NOTIFY categoryIdChanged)

public:
  enum Role { ItemIdRole = Qt::UserRole + 1, NameRole, PathRole, SizeTextRole, IsSelectedRole, IconRole };

  explicit CleanItemsModel(const std::vector<CleanCategory>& categories, QObject* parent = nullptr);

  QString categoryId() const { return categoryId_; }
  void setCategoryId(const QString& id);

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QHash<int, QByteArray> roleNames() const override;

  /// The categories were replaced: start again from nothing.
  void reload();
  /// Selection flags changed, in one item or in many.
  void selectionChanged(const QString& categoryId, int row = -1);

signals:
  void categoryIdChanged();

private:
  const CleanCategory* category() const;

  const std::vector<CleanCategory>& categories_;
  QString categoryId_;
};

} // namespace halcyra::clean
