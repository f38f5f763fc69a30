#include <gtest/gtest.h>

#include <QSettings>

#include "QtPrinting.h"
#include <QSignalSpy>

#include "app/AppInfo.h"
#include "app/AppState.h"
#include "app/DebugLogger.h"
#include "app/NavigationItem.h"
#include "app/NavigationModel.h"
#include "support/TempDir.h"

using namespace halcyra::app;

namespace {

class AppStateTest : public ::testing::Test {
protected:
  halcyra::testing::TempDir dir;
  QString file = QString::fromStdString(dir / "defaults.ini");

  std::unique_ptr<AppState> start() { return std::make_unique<AppState>(std::make_unique<QSettings>(file, QSettings::IniFormat)); }
};

} // namespace

TEST_F(AppStateTest, FirstStartShowsTheTourAndEveryStartOpensTheDashboard) {
  auto first = start();
  EXPECT_FALSE(first->isOnboardingComplete());
  EXPECT_FALSE(first->lastCleanDate().isValid());
  EXPECT_EQ(first->selectedNavItem(), NavigationItem::dashboard);
  first->setSelectedNavItem(NavigationItem::shredder);
  first->setOnboardingComplete(true);
  const QDateTime cleaned = QDateTime::fromSecsSinceEpoch(1'700'000'000);
  first->setLastCleanDate(cleaned);
  first.reset();

  auto second = start();
  EXPECT_TRUE(second->isOnboardingComplete());
  EXPECT_EQ(second->lastCleanDate(), cleaned);
  EXPECT_EQ(second->selectedNavItem(), NavigationItem::dashboard);

  // None is written as an empty value and reads back as none.
  second->setLastCleanDate({});
  second.reset();
  EXPECT_FALSE(start()->lastCleanDate().isValid());
}

TEST_F(AppStateTest, AStoredValueThatIsNotADateReadsAsNone) {
  {
    QSettings defaults(file, QSettings::IniFormat);
    defaults.setValue(AppState::kLastCleanDateKey, QStringLiteral("2024-01-01T10:00:00"));
  }
  EXPECT_FALSE(start()->lastCleanDate().isValid());
  {
    QSettings defaults(file, QSettings::IniFormat);
    defaults.setValue(AppState::kLastCleanDateKey, 42);
  }
  EXPECT_FALSE(start()->lastCleanDate().isValid());
}

TEST_F(AppStateTest, ObserversHearOnlyChangesButEveryAssignmentIsWritten) {
  auto state = start();
  QSignalSpy onboarding(state.get(), &AppState::isOnboardingCompleteChanged);
  QSignalSpy selected(state.get(), &AppState::selectedNavItemChanged);
  state->setOnboardingComplete(false);
  state->setSelectedNavItem(NavigationItem::dashboard);
  EXPECT_EQ(onboarding.count(), 0);
  EXPECT_EQ(selected.count(), 0);
  // The unchanged assignment still reached the store.
  EXPECT_TRUE(QSettings(file, QSettings::IniFormat).contains(AppState::kOnboardingKey));

  state->setSelectedNavItemId(QStringLiteral("clean"));
  state->setSelectedNavItemId(QStringLiteral("nowhere"));
  EXPECT_EQ(state->selectedNavItem(), NavigationItem::clean);
  EXPECT_EQ(selected.count(), 1);

  QSignalSpy refresh(state.get(), &AppState::refreshFlagChanged);
  state->toggleRefresh();
  state->toggleRefresh();
  EXPECT_EQ(refresh.count(), 2);
}

TEST(Navigation, IdsNameTheirRowsAndScreensShowOnlyWhenBuiltIn) {
  for (const auto& row : navigationRows()) EXPECT_EQ(navigationItemFromId(QString::fromLatin1(row.id)), row.item);
  EXPECT_FALSE(navigationItemFromId(u"Dashboard").has_value());

  halcyra::testing::TempDir root;
  root.file("clean/CleanView.qml", "Item {}");
  NavigationModel model(QString::fromStdString(root.path() + "/"));
  EXPECT_EQ(model.rowCount(), static_cast<int>(navigationRows().size()));
  EXPECT_EQ(model.screenUrl(QStringLiteral("clean")), QString::fromStdString(root / "clean/CleanView.qml"));
  EXPECT_TRUE(model.screenUrl(QStringLiteral("duplicates")).isEmpty());
  EXPECT_EQ(model.title(QStringLiteral("clean")), QStringLiteral("Cleaner"));
}

TEST(DebugLogger, KeepsTheNewest500Entries) {
  DebugLogger logger;
  for (int i = 0; i < 500; ++i) logger.log(QString::number(i), halcyra::core::LogEntry::LogLevel::info, halcyra::core::LogEntry::LogSource::clean);
  EXPECT_EQ(logger.entries().size(), 500u);

  QSignalSpy changes(&logger, &DebugLogger::entriesChanged);
  logger.log(QStringLiteral("newest"), halcyra::core::LogEntry::LogLevel::warn, halcyra::core::LogEntry::LogSource::app);
  EXPECT_EQ(changes.count(), 2); // the append, then the trim
  ASSERT_EQ(logger.entries().size(), 500u);
  EXPECT_EQ(logger.entries().front().message, "1");
  EXPECT_EQ(logger.entries().back().message, "newest");
  EXPECT_EQ(logger.entries().back().level, halcyra::core::LogEntry::LogLevel::warn);
  EXPECT_NE(logger.entries().back().id, logger.entries().front().id);
}

TEST(AppInfo, VersionFallsBackWhenTheBundleHasNone) {
  EXPECT_EQ(AppInfo::versionText(QString()), QStringLiteral("v1.0.0"));
  EXPECT_EQ(AppInfo::versionText(QStringLiteral("  ")), QStringLiteral("v1.0.0"));
  EXPECT_EQ(AppInfo(QStringLiteral("2.3.1")).version(), QStringLiteral("v2.3.1"));
}
