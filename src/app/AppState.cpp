#include "app/AppState.h"

#include <QMetaType>

namespace halcyra::app {

AppState::AppState(std::unique_ptr<QSettings> defaults, QObject* parent)
    : QObject(parent), defaults_(defaults ? std::move(defaults) : std::make_unique<QSettings>()) {
  isOnboardingComplete_ = defaults_->value(kOnboardingKey, false).toBool();
  // Only a stored date counts; text that merely looks like one (or anything else) is none.
  const QVariant stored = defaults_->value(kLastCleanDateKey);
  if (stored.metaType() == QMetaType::fromType<QDateTime>() && stored.toDateTime().isValid()) {
    lastCleanDate_ = stored.toDateTime();
  }
}

AppState::~AppState() = default;

void AppState::setSelectedNavItem(NavigationItem item) {
  if (item == selectedNavItem_) return;
  selectedNavItem_ = item;
  emit selectedNavItemChanged();
}

QString AppState::selectedNavItemId() const { return navigationId(selectedNavItem_); }

void AppState::setSelectedNavItemId(const QString& id) {
  if (const auto item = navigationItemFromId(id)) setSelectedNavItem(*item);
}

void AppState::setOnboardingComplete(bool complete) {
  defaults_->setValue(kOnboardingKey, complete);
  defaults_->sync();
  if (complete == isOnboardingComplete_) return;
  isOnboardingComplete_ = complete;
  emit isOnboardingCompleteChanged();
}

void AppState::setLastCleanDate(const QDateTime& date) {
  defaults_->setValue(kLastCleanDateKey, date.isValid() ? QVariant(date) : QVariant());
  defaults_->sync();
  if (date == lastCleanDate_) return;
  lastCleanDate_ = date;
  emit lastCleanDateChanged();
}

void AppState::setRefreshFlag(bool flag) {
  if (flag == refreshFlag_) return;
  refreshFlag_ = flag;
  emit refreshFlagChanged();
}

void AppState::setShouldAutoScan(bool flag) {
  if (flag == shouldAutoScan_) return;
  shouldAutoScan_ = flag;
  emit shouldAutoScanChanged();
}

void AppState::setDebugTrayOpen(bool open) {
  if (open == isDebugTrayOpen_) return;
  isDebugTrayOpen_ = open;
  emit isDebugTrayOpenChanged();
}

} // namespace halcyra::app
