#include <gtest/gtest.h>

#include <cstdio>
#include <random>

#include <QSettings>
#include <QSignalSpy>

#include "DuplicatesTestGroups.h"
#include "FakeDuplicateService.h"
#include "QtPrinting.h"
#include "ViewModelTesting.h"
#include "core/CleanError.h"
#include "duplicates/viewmodel/DuplicatesViewModel.h"
#include "duplicates/viewmodel/NativeDuplicateService.h"
#include "support/TempDir.h"

using halcyra::app::AppState;
using halcyra::app::DebugLogger;
using halcyra::app::NavigationItem;
using halcyra::duplicates::DuplicateGroup;
using halcyra::duplicates::DuplicatesViewModel;
using halcyra::duplicates::SelectionStrategy;
using halcyra::testing::copyOf;
using halcyra::testing::copyOnDisk;
using halcyra::testing::groupOf;
using Phase = DuplicatesViewModel::Phase;

namespace {

class DuplicatesViewModelTest : public ::testing::Test {
protected:
  halcyra::testing::TempDir home;
  std::shared_ptr<halcyra::testing::FakeDuplicateService> service =
      std::make_shared<halcyra::testing::FakeDuplicateService>();
  DebugLogger logger;
  AppState state{std::make_unique<QSettings>(QString::fromStdString(home / "defaults.ini"), QSettings::IniFormat)};
  DuplicatesViewModel viewModel{halcyra::platform::SystemPaths(home.path())};

  void waitFor(Phase phase) {
    halcyra::testing::settle([&] { return viewModel.phase() == phase; });
    ASSERT_EQ(viewModel.phase(), phase) << viewModel.phaseName().toStdString();
  }

  void scanTo(std::vector<DuplicateGroup> groups, const std::string& folder = "/data") {
    service->groups = std::move(groups);
    viewModel.scan(folder, service, logger);
    waitFor(service->groups.empty() ? Phase::idle : Phase::preview);
  }

  /// Two groups as the scan leaves them: every copy but the oldest marked.
  static std::vector<DuplicateGroup> twoGroups() {
    return {groupOf("g1", "Holiday.jpg",
                    {copyOf("a", "/data/Holiday.jpg", 0, false), copyOf("b", "/data/old/Holiday.jpg", 5, true),
                     copyOf("c", "/data/new/Holiday copy.jpg", 9, true)}),
            groupOf("g2", "Report.pdf",
                    {copyOf("d", "/data/Report.pdf", 1, false), copyOf("e", "/data/mail/Report.pdf", 2, true)})};
  }

  std::vector<std::string> messages() const { return halcyra::testing::messages(logger); }

  std::string selection(const std::string& groupId) const {
    std::string marks;
    for (const auto& group : viewModel.groups()) {
      if (group.id != groupId) continue;
      for (const auto& file : group.files) marks += file.isSelected ? 'x' : '-';
    }
    return marks;
  }
};

} // namespace

TEST_F(DuplicatesViewModelTest, ScanShowsGroupsAndLogsItsCourse) {
  viewModel.scan("/old", service, logger);
  waitFor(Phase::idle);
  service->statuses = {"Indexing files…", "Found 5 candidates in 2 size groups"};
  service->groups = twoGroups();
  QSignalSpy statuses(&viewModel, &DuplicatesViewModel::scanStatusChanged);
  viewModel.scan("/data", service, logger);
  EXPECT_EQ(viewModel.phase(), Phase::scanning);
  EXPECT_TRUE(viewModel.groups().empty());
  EXPECT_EQ(viewModel.scanDirectoryText(), "/data");
  waitFor(Phase::preview);

  EXPECT_EQ(viewModel.groupCount(), 2);
  EXPECT_TRUE(viewModel.scanStatus().isEmpty());
  EXPECT_GE(statuses.count(), 3); // both texts came through, then the status was cleared
  EXPECT_FALSE(viewModel.noDuplicatesFound());
  ASSERT_EQ(service->scans().size(), 2u);
  EXPECT_EQ(service->scans()[1].directory, "/data");
  EXPECT_EQ(service->scans()[1].minFileSize, 4096);

  const auto log = messages();
  ASSERT_EQ(log.size(), 4u);
  EXPECT_EQ(log[2], "Duplicate scan started: /data");
  // Three copies marked across both groups, 4096 bytes each.
  EXPECT_EQ(log[3], "Duplicate scan complete: 2 groups, 5 files, 12 KB reclaimable");
  EXPECT_EQ(logger.entries().back().source, halcyra::core::LogEntry::LogSource::duplicates);
}

TEST_F(DuplicatesViewModelTest, ScanWithoutDuplicatesSaysSoUntilReset) {
  scanTo({});
  EXPECT_EQ(viewModel.phase(), Phase::idle);
  EXPECT_TRUE(viewModel.noDuplicatesFound());
  EXPECT_EQ(messages().back(), "Duplicate scan complete: 0 groups, 0 files, 0 KB reclaimable");

  viewModel.reset();
  EXPECT_FALSE(viewModel.noDuplicatesFound());
  EXPECT_FALSE(viewModel.scanDirectory().has_value());
}

TEST_F(DuplicatesViewModelTest, FailuresEndInTheErrorPhaseWithTheirDescription) {
  service->failure = std::make_exception_ptr(
      halcyra::core::CleanError(halcyra::core::CleanError::Kind::scanFailed, "disk on fire"));
  viewModel.scan("/data", service, logger);
  waitFor(Phase::error);
  EXPECT_EQ(viewModel.errorText(), "Scan failed. Please try again.");
  EXPECT_EQ(messages().back(), "Duplicate scan error: Scan failed. Please try again.");

  // "Scan Again" on the error goes back to the folder choice.
  viewModel.reset();
  EXPECT_EQ(viewModel.phase(), Phase::idle);

  service->failure = nullptr;
  scanTo(twoGroups());
  service->failure = std::make_exception_ptr(std::runtime_error("The volume is not mounted."));
  viewModel.requestConfirmation();
  viewModel.confirmDelete(service, state, logger);
  waitFor(Phase::error);
  EXPECT_EQ(viewModel.errorText(), "The volume is not mounted.");
  EXPECT_EQ(messages().back(), "Duplicate cleanup error: The volume is not mounted.");
}

TEST_F(DuplicatesViewModelTest, RescanScansTheLastFolderAgainAndNeedsOne) {
  viewModel.rescan(service, logger);
  EXPECT_EQ(viewModel.phase(), Phase::idle);
  EXPECT_TRUE(service->scans().empty());

  scanTo(twoGroups(), "/data/photos");
  viewModel.requestConfirmation();
  viewModel.confirmDelete(service, state, logger);
  waitFor(Phase::summary);

  viewModel.rescan(service, logger);
  EXPECT_EQ(viewModel.phase(), Phase::scanning);
  waitFor(Phase::preview);
  ASSERT_EQ(service->scans().size(), 2u);
  EXPECT_EQ(service->scans()[1].directory, "/data/photos");
}

TEST_F(DuplicatesViewModelTest, StrategiesApplyToEveryGroupByTheirScreenNames) {
  scanTo(twoGroups());
  viewModel.applyStrategy(QStringLiteral("keepNewest"));
  EXPECT_EQ(selection("g1"), "xx-");
  EXPECT_EQ(selection("g2"), "x-");
  viewModel.applyStrategy(QStringLiteral("keepEverything"));
  EXPECT_EQ(selection("g2"), "x-");
  viewModel.applyStrategy(QStringLiteral("keepOldest"));
  EXPECT_EQ(selection("g1"), "-xx"); // the scan's own default again
}

TEST_F(DuplicatesViewModelTest, TheLastUnmarkedCopyOfAGroupCannotBeMarked) {
  scanTo(twoGroups());
  QSignalSpy changes(&viewModel, &DuplicatesViewModel::selectionChanged);

  // A group of two: the marked copy comes off, then the other cannot go on.
  viewModel.toggleFile(QStringLiteral("g2"), QStringLiteral("e"));
  EXPECT_EQ(selection("g2"), "--");
  viewModel.toggleFile(QStringLiteral("g2"), QStringLiteral("e"));
  EXPECT_EQ(selection("g2"), "-x");
  viewModel.toggleFile(QStringLiteral("g2"), QStringLiteral("d"));
  EXPECT_EQ(selection("g2"), "-x");

  EXPECT_EQ(changes.count(), 2);

  // Unknown ids change nothing.
  viewModel.toggleFile(QStringLiteral("g1"), QStringLiteral("e"));
  viewModel.toggleFile(QStringLiteral("nope"), QStringLiteral("a"));
  viewModel.selectAllInGroup(QStringLiteral("nope"));
  viewModel.deselectAllInGroup(QStringLiteral("nope"));
  EXPECT_EQ(selection("g1"), "-xx");
  EXPECT_EQ(changes.count(), 2);
}

TEST_F(DuplicatesViewModelTest, SelectAllInGroupLeavesTheOldestCopyUnmarked) {
  scanTo({groupOf("g", "a.txt",
                  {copyOf("new", "/d/new.txt", 9, false), copyOf("old", "/d/old.txt", 1, false),
                   copyOf("mid", "/d/mid.txt", 5, false)})});
  viewModel.selectAllInGroup(QStringLiteral("g"));
  EXPECT_EQ(selection("g"), "x-x");

  // Even after "Keep Newest" had marked the oldest: "Select All" never marks every copy.
  viewModel.applyStrategy(SelectionStrategy::keepNewest);
  EXPECT_EQ(selection("g"), "-xx");
  viewModel.selectAllInGroup(QStringLiteral("g"));
  EXPECT_EQ(selection("g"), "x-x");
}

TEST_F(DuplicatesViewModelTest, NoSequenceOfSelectionOperationsMarksEveryCopyOfAGroup) {
  std::vector<DuplicateGroup> groups;
  for (int g = 0; g < 4; ++g) {
    std::vector<halcyra::duplicates::DuplicateFile> files;
    for (int f = 0; f < 2 + g; ++f) {
      files.push_back(copyOf(std::to_string(g) + "-" + std::to_string(f), "/d/" + std::to_string(f), f % 2, f > 0));
    }
    groups.push_back(groupOf(std::to_string(g), "file", std::move(files)));
  }
  scanTo(groups);

  std::mt19937 random(20240501);
  for (int step = 0; step < 2000; ++step) {
    const int g = static_cast<int>(random() % 4);
    const QString groupId = QString::number(g);
    switch (random() % 6) {
    case 0: viewModel.applyStrategy(random() % 2 ? SelectionStrategy::keepOldest : SelectionStrategy::keepNewest); break;
    case 1: viewModel.selectAllInGroup(groupId); break;
    case 2: viewModel.deselectAllInGroup(groupId); break;
    default:
      viewModel.toggleFile(groupId, QStringLiteral("%1-%2").arg(g).arg(random() % static_cast<unsigned>(2 + g)));
    }
    for (const auto& group : viewModel.groups()) {
      ASSERT_LT(group.selectedCount(), static_cast<int>(group.files.size())) << "step " << step;
    }
  }
}

TEST_F(DuplicatesViewModelTest, TotalsFollowTheSelectionAndNothingMarkedAsksNothing) {
  scanTo(twoGroups());
  EXPECT_EQ(viewModel.totalSelectedCount(), 3);
  EXPECT_EQ(viewModel.totalWastedSize(), 3 * 4096);

  viewModel.deselectAllInGroup(QStringLiteral("g1"));
  viewModel.deselectAllInGroup(QStringLiteral("g2"));
  EXPECT_EQ(viewModel.totalSelectedCount(), 0);
  EXPECT_EQ(viewModel.totalWastedText(), "0 KB");
  viewModel.requestConfirmation();
  EXPECT_EQ(viewModel.phase(), Phase::preview);

  viewModel.toggleFile(QStringLiteral("g2"), QStringLiteral("e"));
  viewModel.requestConfirmation();
  EXPECT_EQ(viewModel.phase(), Phase::confirming);
  viewModel.cancelConfirmation();
  EXPECT_EQ(viewModel.phase(), Phase::preview);
  EXPECT_EQ(selection("g2"), "-x");
}

TEST_F(DuplicatesViewModelTest, DeleteHandsTheGroupsToTheEngineAndLogsWhatStayed) {
  auto keep1 = copyOnDisk(home, "one/keep", 900, false);
  auto mark1a = copyOnDisk(home, "one/b", 600, true);
  auto mark1b = copyOnDisk(home, "one/a", 300, true);
  auto keep2 = copyOnDisk(home, "two/keep", 900, false);
  auto mark2 = copyOnDisk(home, "two/changed", 300, true);
  scanTo({groupOf("g1", "keep", {keep1, mark1a, mark1b}), groupOf("g2", "keep", {keep2, mark2})});

  service->statuses = {"Deleting file 1/3…"};
  service->result = {8192, 2, 0.46, {{mark2.path, "changed since the scan"}}};
  service->hold();
  viewModel.requestConfirmation();
  viewModel.confirmDelete(service, state, logger);
  EXPECT_EQ(viewModel.phase(), Phase::executing);
  halcyra::testing::settle([&] { return !viewModel.scanStatus().isEmpty(); });
  EXPECT_EQ(viewModel.scanStatus(), "Deleting file 1/3…");
  service->release();
  waitFor(Phase::summary);

  // The engine gets every marked copy in group order, and decides on each right before it acts.
  EXPECT_EQ(service->deletedPaths(), (std::vector<std::string>{mark1a.path, mark1b.path, mark2.path}));
  EXPECT_EQ(viewModel.freedText(), "8 KB");
  EXPECT_EQ(viewModel.filesDeleted(), 2);
  EXPECT_FALSE(state.lastCleanDate().isValid());

  const auto log = messages();
  ASSERT_EQ(log.size(), 5u);
  EXPECT_EQ(log[2], "Duplicate cleanup started: 3 files, 12 KB selected");
  EXPECT_EQ(log[3], "Duplicate cleanup skipped " + mark2.path + ": changed since the scan");
  EXPECT_EQ(log[4], "Duplicate cleanup complete: freed 8 KB, 2 files in 0.5s");
  EXPECT_EQ(logger.entries()[3].level, halcyra::core::LogEntry::LogLevel::warn);
}

TEST_F(DuplicatesViewModelTest, DoneClearsTheToolAndGoesToTheDashboard) {
  scanTo(twoGroups());
  viewModel.requestConfirmation();
  viewModel.confirmDelete(service, state, logger);
  waitFor(Phase::summary);
  state.setSelectedNavItem(NavigationItem::duplicates);

  viewModel.finish(state);
  EXPECT_EQ(viewModel.phase(), Phase::idle);
  EXPECT_TRUE(viewModel.groups().empty());
  EXPECT_FALSE(viewModel.scanDirectory().has_value());
  EXPECT_EQ(state.selectedNavItem(), NavigationItem::dashboard);
}

TEST_F(DuplicatesViewModelTest, RealEngineDeletesTheMarkedCopiesAndKeepsTheOldest) {
  const std::string content(8192, 'd');
  const std::string oldest = home.file("data/a/photo.jpg", content);
  const std::string newer = home.file("data/b/photo.jpg", content);
  const std::string newest = home.file("data/c/photo copy.jpg", content);
  const std::string unique = home.file("data/c/other.jpg", std::string(8192, 'u'));
  halcyra::testing::TempDir::setAge(oldest, 3000);
  halcyra::testing::TempDir::setAge(newer, 2000);
  halcyra::testing::TempDir::setAge(newest, 1000);
  auto engine = std::make_shared<halcyra::duplicates::NativeDuplicateService>(
      halcyra::platform::Platform::forSystem(halcyra::platform::SystemPaths(home.path())));

  viewModel.scan(home / "data", engine, logger);
  waitFor(Phase::preview);
  ASSERT_EQ(viewModel.groupCount(), 1);
  EXPECT_EQ(viewModel.groups()[0].files[0].path, oldest);
  // Keep the newest instead, then delete.
  viewModel.applyStrategy(SelectionStrategy::keepNewest);
  viewModel.requestConfirmation();
  viewModel.confirmDelete(engine, state, logger);
  waitFor(Phase::summary);

  EXPECT_EQ(viewModel.filesDeleted(), 2);
  EXPECT_EQ(viewModel.freedText(), "16 KB");
  EXPECT_FALSE(halcyra::testing::existsNoFollow(oldest));
  EXPECT_FALSE(halcyra::testing::existsNoFollow(newer));
  EXPECT_TRUE(halcyra::testing::existsNoFollow(newest));
  EXPECT_TRUE(halcyra::testing::existsNoFollow(unique));
}
