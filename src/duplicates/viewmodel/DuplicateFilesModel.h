#pragma once

#include <optional>
#include <vector>

#include <QAbstractListModel>
#include <QString>

#include "duplicates/DuplicateGroup.h"

namespace halcyra::duplicates {

/// The detail panel: the files of one group, in the group's order, with their marks, and the
/// group's own figures. It reads the view model's groups in place and follows them as they
/// change; a group id that names no group shows nothing.
class DuplicateFilesModel : public QAbstractListModel {
  Q_OBJECT
  Q_PROPERTY(QString groupId READ groupId WRITE setGroupId NOTIFY groupIdChanged)
  Q_PROPERTY(bool hasGroup READ hasGroup NOTIFY groupChanged)
  Q_PROPERTY(QString name READ name NOTIFY groupChanged)
  Q_PROPERTY(QString fileHash READ fileHash NOTIFY groupChanged)
  Q_PROPERTY(int copies READ copies NOTIFY groupChanged)
  Q_PROPERTY(QString eachSizeText READ eachSizeText NOTIFY groupChanged)
  Q_PROPERTY(int selectedCount READ selectedCount NOTIFY groupChanged)

public:
  enum Role { FileIdRole = Qt::UserRole + 1, NameRole, FolderRole, SizeTextRole, DateTextRole, IsSelectedRole };

  explicit DuplicateFilesModel(const std::vector<DuplicateGroup>& groups, QObject* parent = nullptr);

  QString groupId() const { return groupId_; }
  void setGroupId(const QString& id);

  bool hasGroup() const { return group() != nullptr; }
  QString name() const;
  QString fileHash() const;
  int copies() const;
  QString eachSizeText() const;
  int selectedCount() const;

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QHash<int, QByteArray> roleNames() const override;

  /// The groups were replaced: look the group up afresh.
  void reload();
  /// The selection of one group changed, or of all when `groupId` is empty.
  void selectionChanged(const QString& groupId = {});

  /// "Mar 4, 2024 at 9:30 AM" in local time, as the rows show a modification date.
  static QString dateText(FileDate date);

signals:
  void groupIdChanged();
  void groupChanged();

private:
  const DuplicateGroup* group() const;

  const std::vector<DuplicateGroup>& groups_;
  QString groupId_;
  std::optional<std::size_t> position_; ///< of the group in `groups_`, found on each reload
};

} // namespace halcyra::duplicates
