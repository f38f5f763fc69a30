#pragma once

#include <vector>

#include <QAbstractListModel>
#include <QString>

#include "shredder/ShredderFile.h"

namespace halcyra::shredder {

/// The shredder's candidate list in the order the files were added, as the file list shows
/// it. It owns the records, so every change reaches the list as an insertion, a removal or a
/// single row's change, and a check mark never makes the list jump back to its top.
class ShredderFilesModel : public QAbstractListModel {
  Q_OBJECT

public:
  enum Role { FileIdRole = Qt::UserRole + 1, NameRole, PathRole, SizeTextRole, IsSelectedRole };

  explicit ShredderFilesModel(QObject* parent = nullptr);

  const std::vector<ShredderFile>& files() const noexcept { return files_; }

  /// Adds the records at the end, as they are.
  void append(std::vector<ShredderFile> records);
  /// Flips the check mark of the record with this id; false if no record has it.
  bool toggle(const std::string& id);
  /// Removes every record with this id; false if none had it.
  bool remove(const std::string& id);
  void clear();

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QHash<int, QByteArray> roleNames() const override;

private:
  std::vector<ShredderFile> files_;
};

} // namespace halcyra::shredder
