#include "app/NavigationItem.h"

#include <QtGlobal>

namespace halcyra::app {

const std::array<NavigationRow, 10>& navigationRows() {
  // Screens live in one folder per tool inside the QML module; a row whose file is not
  // built in shows the "not available yet" page instead.
  static const std::array<NavigationRow, 10> rows{{
      {NavigationItem::dashboard, "dashboard", QT_TRANSLATE_NOOP("Strings", "Dashboard"),
       "gauge.with.dots.needle.33percent", "dashboard/DashboardView.qml"},
      {NavigationItem::clean, "clean", QT_TRANSLATE_NOOP("Strings", "Cleaner"), "trash", "clean/CleanView.qml"},
      {NavigationItem::update, "update", QT_TRANSLATE_NOOP("Strings", "Updater"), "arrow.down.app",
       "update/AppUpdaterView.qml"},
      {NavigationItem::uninstaller, "uninstaller", QT_TRANSLATE_NOOP("Strings", "Uninstaller"), "xmark.app",
       "uninstaller/UninstallerView.qml"},
      {NavigationItem::duplicates, "duplicates", QT_TRANSLATE_NOOP("Strings", "Duplicates"), "doc.on.doc",
       "duplicates/DuplicatesView.qml"},
      {NavigationItem::resetter, "resetter", QT_TRANSLATE_NOOP("Strings", "Resetter"),
       "arrow.counterclockwise.circle", "resetter/ResetterView.qml"},
      {NavigationItem::shredder, "shredder", QT_TRANSLATE_NOOP("Strings", "Shredder"), "lock.doc",
       "shredder/ShredderView.qml"},
      {NavigationItem::diskAnalyzer, "diskAnalyzer", QT_TRANSLATE_NOOP("Strings", "Disk Space"), "chart.pie",
       "analyzer/DiskAnalyzerView.qml"},
      {NavigationItem::startupItems, "startupItems", QT_TRANSLATE_NOOP("Strings", "Startup Items"),
       "clock.arrow.2.circlepath", "startup/StartupItemsView.qml"},
      {NavigationItem::settings, "settings", QT_TRANSLATE_NOOP("Strings", "Settings"), "gear",
       "screens/SettingsView.qml"},
  }};
  return rows;
}

const NavigationRow& navigationRow(NavigationItem item) { return navigationRows()[static_cast<std::size_t>(item)]; }

QString navigationId(NavigationItem item) { return QString::fromLatin1(navigationRow(item).id); }

std::optional<NavigationItem> navigationItemFromId(QStringView id) {
  for (const auto& row : navigationRows()) {
    if (id == QLatin1String(row.id)) return row.item;
  }
  return std::nullopt;
}

} // namespace halcyra::app
