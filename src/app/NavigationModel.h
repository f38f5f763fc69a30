#pragma once

#include <QAbstractListModel>
#include <QString>

namespace halcyra::app {

/// The sidebar's rows for QML, in order. `screenUrl` is the tool's screen inside the QML module,
/// or empty while that screen is not built in (the window then shows a "not available" page).
class NavigationModel : public QAbstractListModel {
  Q_OBJECT

public:
  enum Role { IdRole = Qt::UserRole + 1, TitleRole, IconRole, ScreenUrlRole };

  /// `screenRoot` is where the QML module's files lie as resources, e.g. ":/Halcyra/".
  explicit NavigationModel(QString screenRoot, QObject* parent = nullptr);

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QHash<int, QByteArray> roleNames() const override;

  /// The screen of the row with this stored value, or empty.
  Q_INVOKABLE QString screenUrl(const QString& id) const;
  /// The translated title of the row with this stored value.
  Q_INVOKABLE QString title(const QString& id) const;

private:
  QString screenRoot_;
};

} // namespace halcyra::app
