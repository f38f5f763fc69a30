#include "duplicates/viewmodel/DuplicateFilesModel.h"

#include <QDateTime>
#include <QLocale>

#include "core/ByteFormatter.h"

namespace halcyra::duplicates {
namespace {

QString lastComponent(const std::string& path) {
  const auto slash = path.rfind('/');
  return QString::fromStdString(slash == std::string::npos ? path : path.substr(slash + 1));
}

QString folderOf(const std::string& path) {
  const auto slash = path.rfind('/');
  if (slash == std::string::npos) return {};
  return QString::fromStdString(slash == 0 ? std::string("/") : path.substr(0, slash));
}

} // namespace

DuplicateFilesModel::DuplicateFilesModel(const std::vector<DuplicateGroup>& groups, QObject* parent)
    : QAbstractListModel(parent), groups_(groups) {}

const DuplicateGroup* DuplicateFilesModel::group() const {
  return position_ && *position_ < groups_.size() ? &groups_[*position_] : nullptr;
}

void DuplicateFilesModel::setGroupId(const QString& id) {
  if (id == groupId_) return;
  groupId_ = id;
  reload();
  emit groupIdChanged();
}

void DuplicateFilesModel::reload() {
  beginResetModel();
  position_.reset();
  const std::string key = groupId_.toStdString();
  for (std::size_t i = 0; i < groups_.size() && !groupId_.isEmpty(); ++i) {
    if (groups_[i].id == key) {
      position_ = i;
      break;
    }
  }
  endResetModel();
  emit groupChanged();
}

void DuplicateFilesModel::selectionChanged(const QString& groupId) {
  if (!groupId.isEmpty() && groupId != groupId_) return;
  const int rows = rowCount();
  if (rows > 0) emit dataChanged(index(0), index(rows - 1), {IsSelectedRole});
  emit groupChanged();
}

QString DuplicateFilesModel::name() const {
  const auto* current = group();
  return current ? QString::fromStdString(current->representativeFileName) : QString();
}

QString DuplicateFilesModel::fileHash() const {
  const auto* current = group();
  return current ? QString::fromStdString(current->fileHash) : QString();
}

int DuplicateFilesModel::copies() const {
  const auto* current = group();
  return current ? static_cast<int>(current->files.size()) : 0;
}

QString DuplicateFilesModel::eachSizeText() const {
  const auto* current = group();
  return QString::fromStdString(core::ByteFormatter::format(current ? current->fileSize : std::int64_t{0}));
}

int DuplicateFilesModel::selectedCount() const {
  const auto* current = group();
  return current ? current->selectedCount() : 0;
}

int DuplicateFilesModel::rowCount(const QModelIndex& parent) const {
  if (parent.isValid()) return 0;
  return copies();
}

QVariant DuplicateFilesModel::data(const QModelIndex& index, int role) const {
  const auto* current = group();
  if (current == nullptr || !index.isValid() || index.row() < 0 ||
      static_cast<std::size_t>(index.row()) >= current->files.size()) {
    return {};
  }
  const DuplicateFile& file = current->files[static_cast<std::size_t>(index.row())];
  switch (role) {
  case FileIdRole: return QString::fromStdString(file.id);
  case NameRole: return lastComponent(file.path);
  case FolderRole: return folderOf(file.path);
  case SizeTextRole: return QString::fromStdString(core::ByteFormatter::format(file.size));
  case DateTextRole: return dateText(file.modificationDate);
  case IsSelectedRole: return file.isSelected;
  default: return {};
  }
}

QHash<int, QByteArray> DuplicateFilesModel::roleNames() const {
  return {{FileIdRole, "fileId"},     {NameRole, "name"},         {FolderRole, "folder"},
          {SizeTextRole, "sizeText"}, {DateTextRole, "dateText"}, {IsSelectedRole, "isSelected"}};
}

QString DuplicateFilesModel::dateText(FileDate date) {
  const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(date.time_since_epoch()).count();
  const QDateTime local = QDateTime::fromMSecsSinceEpoch(milliseconds, Qt::UTC).toLocalTime();
  // Without a language of its own (the "C" locale of a bare session) the texts are English.
  QLocale locale;
  if (locale.language() == QLocale::C) locale = QLocale(QLocale::English, QLocale::UnitedStates);
  return locale.toString(local.date(), QStringLiteral("MMM d, yyyy")) + QStringLiteral(" at ") +
         locale.toString(local.time(), QLocale::ShortFormat);
}

} // namespace halcyra::duplicates
