#include "app/NavigationModel.h"

#include <QCoreApplication>
#include <QFile>

#include "app/NavigationItem.h"

namespace halcyra::app {

NavigationModel::NavigationModel(QString screenRoot, QObject* parent)
    : QAbstractListModel(parent), screenRoot_(std::move(screenRoot)) {}

int NavigationModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(navigationRows().size());
}

QVariant NavigationModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() >= rowCount()) return {};
  const auto& row = navigationRows()[static_cast<std::size_t>(index.row())];
  switch (role) {
  case IdRole: return QString::fromLatin1(row.id);
  case TitleRole:
  case Qt::DisplayRole: return QCoreApplication::translate("Strings", row.title);
  case IconRole: return QString::fromLatin1(row.icon);
  case ScreenUrlRole: return screenUrl(QString::fromLatin1(row.id));
  default: return {};
  }
}

QHash<int, QByteArray> NavigationModel::roleNames() const {
  return {{IdRole, "itemId"}, {TitleRole, "title"}, {IconRole, "icon"}, {ScreenUrlRole, "screenUrl"}};
}

QString NavigationModel::screenUrl(const QString& id) const {
  const auto item = navigationItemFromId(id);
  if (!item) return {};
  const QString file = screenRoot_ + QString::fromLatin1(navigationRow(*item).screen);
  if (!QFile::exists(file)) return {};
  // ":/x" as a file is "qrc:/x" as a URL.
  return file.startsWith(QLatin1Char(':')) ? QStringLiteral("qrc") + file : file;
}

QString NavigationModel::title(const QString& id) const {
  const auto item = navigationItemFromId(id);
  return item ? QCoreApplication::translate("Strings", navigationRow(*item).title) : QString();
}

} // namespace halcyra::app
