#pragma once

#include <array>
#include <optional>

#include <QString>
#include <QStringView>

namespace halcyra::app {

/// The ten destinations of the sidebar, in sidebar order.
enum class NavigationItem {
  dashboard, clean, update, uninstaller, duplicates, resetter, shredder, diskAnalyzer, startupItems, settings
};

/// One sidebar row: the stored value (also the row's identity), the English title (the key of
/// the "Strings" translation context), the symbol, and the screen file inside the QML module.
struct NavigationRow {
  NavigationItem item;
  const char* id;
  const char* title;
  const char* icon;
  const char* screen;
};

/// All rows in sidebar order.
const std::array<NavigationRow, 10>& navigationRows();

const NavigationRow& navigationRow(NavigationItem item);
QString navigationId(NavigationItem item);
/// The item whose stored value is `id`; none for anything else.
std::optional<NavigationItem> navigationItemFromId(QStringView id);

} // namespace halcyra::app
