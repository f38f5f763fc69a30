#pragma once

#include <memory>

#include <QDateTime>
#include <QObject>
#include <QSettings>
#include <QString>

#include "app/NavigationItem.h"

namespace halcyra::app {

/// Application-wide state shared by the root and the tools, on the interface thread only.
/// `isOnboardingComplete` and `lastCleanDate` live in the user defaults (QSettings, which is
/// the defaults database on macOS): read once at creation, written on every assignment, even
/// one that changes nothing. Observers hear only of real changes.
class AppState : public QObject {
  Q_OBJECT
  Q_PROPERTY(QString selectedNavItem READ selectedNavItemId WRITE setSelectedNavItemId NOTIFY selectedNavItemChanged)
  Q_PROPERTY(bool isOnboardingComplete READ isOnboardingComplete WRITE setOnboardingComplete NOTIFY
                 isOnboardingCompleteChanged)
  Q_PROPERTY(QDateTime lastCleanDate READ lastCleanDate WRITE setLastCleanDate NOTIFY lastCleanDateChanged)
  Q_PROPERTY(bool refreshFlag READ refreshFlag WRITE setRefreshFlag NOTIFY refreshFlagChanged)
  Q_PROPERTY(bool shouldAutoScan READ shouldAutoScan WRITE setShouldAutoScan NOTIFY shouldAutoScanChanged)
  Q_PROPERTY(bool isDebugTrayOpen READ isDebugTrayOpen WRITE setDebugTrayOpen NOTIFY isDebugTrayOpenChanged)

public:
  static constexpr const char* kOnboardingKey = "isOnboardingComplete";
  static constexpr const char* kLastCleanDateKey = "lastCleanDate";

  /// `defaults` is the store of the two persisted values; without one, the application's own.
  explicit AppState(std::unique_ptr<QSettings> defaults = nullptr, QObject* parent = nullptr);
  ~AppState() override;

  NavigationItem selectedNavItem() const noexcept { return selectedNavItem_; }
  void setSelectedNavItem(NavigationItem item);
  QString selectedNavItemId() const;
  /// Ignores a text that names no sidebar row.
  void setSelectedNavItemId(const QString& id);

  bool isOnboardingComplete() const noexcept { return isOnboardingComplete_; }
  void setOnboardingComplete(bool complete);

  /// An invalid date means none.
  QDateTime lastCleanDate() const { return lastCleanDate_; }
  void setLastCleanDate(const QDateTime& date);

  bool refreshFlag() const noexcept { return refreshFlag_; }
  void setRefreshFlag(bool flag);
  /// What the "Refresh" command does: only the change of the flag carries meaning.
  Q_INVOKABLE void toggleRefresh() { setRefreshFlag(!refreshFlag_); }

  bool shouldAutoScan() const noexcept { return shouldAutoScan_; }
  void setShouldAutoScan(bool flag);

  bool isDebugTrayOpen() const noexcept { return isDebugTrayOpen_; }
  void setDebugTrayOpen(bool open);

signals:
  void selectedNavItemChanged();
  void isOnboardingCompleteChanged();
  void lastCleanDateChanged();
  void refreshFlagChanged();
  void shouldAutoScanChanged();
  void isDebugTrayOpenChanged();

private:
  std::unique_ptr<QSettings> defaults_;
  NavigationItem selectedNavItem_ = NavigationItem::dashboard;
  bool isOnboardingComplete_ = false;
  QDateTime lastCleanDate_;
  bool refreshFlag_ = false;
  bool shouldAutoScan_ = false;
  bool isDebugTrayOpen_ = false;
};

} // namespace halcyra::app
