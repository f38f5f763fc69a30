#include <gtest/gtest.h>

#include <QSettings>
#include <QSignalSpy>

#include "FakeCleanService.h"
#include "QtPrinting.h"
#include "ViewModelTesting.h"
#include "app/BackgroundTask.h"
#include "clean/viewmodel/CleanViewModel.h"
#include "core/CleanError.h"
#include "support/TempDir.h"

using halcyra::app::AppState;
using halcyra::app::DebugLogger;
using halcyra::app::NavigationItem;
using halcyra::clean::CleanCategory;
using halcyra::clean::CleanItem;
using halcyra::clean::CleanViewModel;
using Phase = CleanViewModel::Phase;

namespace {

/// A category whose items are "<id>-0", "<id>-1", ... with the given sizes, selected as a scan
/// leaves them: everything unless protected or skipped.
CleanCategory category(const std::string& id, const std::string& section, std::vector<std::int64_t> sizes,
                       bool whitelisted = false, std::optional<std::string> skipReason = std::nullopt) {
  CleanCategory result;
  result.id = id;
  result.name = id;
  result.icon = "folder";
  result.section = section;
  result.isWhitelisted = whitelisted;
  result.skipReason = std::move(skipReason);
  const bool selected = !whitelisted && !result.skipReason;
  for (std::size_t i = 0; i < sizes.size(); ++i) {
    result.items.push_back(CleanItem{id + "-" + std::to_string(i), "/home/u/" + id + "/" + std::to_string(i),
                                     sizes[i], selected});
  }
  result.isSelected = selected && !sizes.empty();
  return result;
}

class CleanViewModelTest : public ::testing::Test {
protected:
  halcyra::testing::TempDir home;
  std::shared_ptr<halcyra::testing::FakeCleanService> service = std::make_shared<halcyra::testing::FakeCleanService>();
  DebugLogger logger;
  AppState state{std::make_unique<QSettings>(QString::fromStdString(home / "defaults.ini"), QSettings::IniFormat)};
  CleanViewModel viewModel{halcyra::platform::FullDiskAccessChecker(halcyra::platform::SystemPaths(home.path())), false};

  void waitFor(Phase phase) {
    halcyra::testing::settle([&] { return viewModel.phase() == phase; });
    ASSERT_EQ(viewModel.phaseName(), phaseName(phase));
  }

  static QString phaseName(Phase phase) {
    static const char* names[] = {"idle", "scanning", "preview", "confirming", "executing", "summary", "error"};
    return QString::fromLatin1(names[static_cast<int>(phase)]);
  }

  void scanTo(std::vector<CleanCategory> categories) {
    service->categories = std::move(categories);
    viewModel.scan(service, logger);
    waitFor(service->categories.empty() ? Phase::idle : Phase::preview);
  }

  std::vector<std::string> messages() const { return halcyra::testing::messages(logger); }

  std::vector<std::string> selectedIds() const {
    std::vector<std::string> ids;
    for (const auto& c : viewModel.categories()) {
      for (const auto& item : c.items) {
        if (item.isSelected) ids.push_back(item.id);
      }
    }
    return ids;
  }

  const CleanCategory& find(const std::string& id) const {
    for (const auto& c : viewModel.categories()) {
      if (c.id == id) return c;
    }
    throw std::runtime_error("no category " + id);
  }
};

} // namespace

TEST_F(CleanViewModelTest, ScanShowsTheResultsAndLogsItsCourse) {
  service->statuses = {"Scanning User Caches...", "Scanning Trash..."};
  QSignalSpy statuses(&viewModel, &CleanViewModel::scanStatusChanged);
  service->categories = {category("caches", "User", {2000, 500}), category("logs", "System", {500}),
                         category("downloads", "User", {9000}, true)};
  viewModel.scan(service, logger);
  EXPECT_EQ(viewModel.phase(), Phase::scanning);
  EXPECT_TRUE(viewModel.categories().empty());
  waitFor(Phase::preview);

  EXPECT_EQ(viewModel.categories().size(), 3u);
  EXPECT_TRUE(viewModel.scanStatus().isEmpty());
  EXPECT_TRUE(viewModel.scanDate().isValid());
  EXPECT_GE(statuses.count(), 2); // both texts came through before the status was cleared

  const auto log = messages();
  ASSERT_EQ(log.size(), 5u);
  EXPECT_EQ(log[0], "Scan started");
  EXPECT_EQ(log[1].rfind("FDA Check — Home: " + home.path(), 0), 0u);
  EXPECT_EQ(std::count(log[1].begin(), log[1].end(), '\n'), 5); // six lines
  EXPECT_EQ(log[2], "Scanning User Caches...");
  EXPECT_EQ(log[3], "Scanning Trash...");
  // Protected items count among the items but not among the reclaimable bytes.
  EXPECT_EQ(log[4], "Scan complete: 3 categories, 4 items, 3 KB reclaimable");
}

TEST_F(CleanViewModelTest, ScanOutcomesOtherThanResults) {
  // Nothing found: back to the idle page, no message.
  scanTo({});
  EXPECT_EQ(viewModel.phase(), Phase::idle);

  // A failure shows the shared error text; the payload stays in no text at all.
  service->failure = std::make_exception_ptr(halcyra::core::CleanError(halcyra::core::CleanError::Kind::scanFailed, "disk on fire"));
  viewModel.scan(service, logger);
  waitFor(Phase::error);
  EXPECT_EQ(viewModel.errorText(), "Scan failed. Please try again.");
  EXPECT_EQ(messages().back(), "Scan error: Scan failed. Please try again.");

  // Any other error shows its own description.
  service->failure = std::make_exception_ptr(std::runtime_error("The volume is not mounted."));
  viewModel.rescan(service, logger);
  waitFor(Phase::error);
  EXPECT_EQ(viewModel.errorText(), "The volume is not mounted.");
}

TEST_F(CleanViewModelTest, SelectionRulesPassProtectedAndSkippedCategoriesBy) {
  scanTo({category("caches", "User", {100, 200}), category("downloads", "User", {5000}, true),
          category("firefox", "Browsers", {}, false, "Firefox is running"), category("logs", "System", {50})});

  viewModel.deselectAll();
  EXPECT_TRUE(selectedIds().empty());
  EXPECT_FALSE(find("downloads").isSelected);

  viewModel.selectAll();
  EXPECT_EQ(selectedIds(), (std::vector<std::string>{"caches-0", "caches-1", "logs-0"}));
  EXPECT_FALSE(find("firefox").isSelected);

  viewModel.toggleCategory("downloads");
  viewModel.toggleCategory("firefox");
  viewModel.toggleItem("downloads", "downloads-0");
  viewModel.toggleCategory("no such id");
  viewModel.toggleItem("caches", "no such item");
  EXPECT_EQ(selectedIds(), (std::vector<std::string>{"caches-0", "caches-1", "logs-0"}));
  EXPECT_FALSE(find("downloads").isSelected);
  EXPECT_FALSE(find("firefox").isSelected);

  // The protected category's bytes are in no figure.
  EXPECT_EQ(viewModel.totalReclaimableSize(), 350);
  EXPECT_EQ(viewModel.totalSelectedSize(), 350);
  EXPECT_EQ(viewModel.selectedItemCount(), 3);
}

TEST_F(CleanViewModelTest, ItemTogglesKeepTheCategoryFlagExact) {
  scanTo({category("caches", "User", {100, 200, 300})});

  // Any item of a fully selected category clears the category's flag; the rest stay selected.
  viewModel.toggleItem("caches", "caches-1");
  EXPECT_FALSE(find("caches").isSelected);
  EXPECT_EQ(selectedIds(), (std::vector<std::string>{"caches-0", "caches-2"}));

  // The last unselected item makes the category selected again.
  viewModel.toggleItem("caches", "caches-1");
  EXPECT_TRUE(find("caches").isSelected);

  // A category toggle gives every item the category's new value.
  viewModel.toggleItem("caches", "caches-0");
  viewModel.toggleCategory("caches"); // was unselected (partly): now all selected
  EXPECT_EQ(selectedIds().size(), 3u);
  viewModel.toggleCategory("caches");
  EXPECT_TRUE(selectedIds().empty());
  EXPECT_EQ(viewModel.totalReclaimableSize(), 600); // unselected bytes still count as reclaimable
}

TEST_F(CleanViewModelTest, SectionSelectAllFillsPartlySelectedCategoriesAndDeselectAllLeavesThem) {
  scanTo({category("caches", "User", {100, 200}), category("logs", "User", {50}), category("chrome", "Browsers", {10})});
  viewModel.toggleItem("caches", "caches-0"); // caches is now partly selected, flag false

  viewModel.deselectAllInSection("User");
  // Only the fully selected category was cleared; the partly selected one kept its item.
  EXPECT_EQ(selectedIds(), (std::vector<std::string>{"caches-1", "chrome-0"}));
  EXPECT_EQ(viewModel.sectionSelectedCount("User"), 1);

  viewModel.selectAllInSection("User");
  EXPECT_EQ(selectedIds(), (std::vector<std::string>{"caches-0", "caches-1", "logs-0", "chrome-0"}));
  EXPECT_TRUE(find("caches").isSelected);
}

TEST_F(CleanViewModelTest, CleanAllSelectsEverythingAndAsksForConfirmation) {
  scanTo({category("caches", "User", {100, 200}), category("logs", "System", {50})});
  viewModel.deselectAll();
  viewModel.toggleItem("caches", "caches-0");

  viewModel.cleanAll(); // replaces whatever was narrowed down before
  EXPECT_EQ(viewModel.phase(), Phase::confirming);
  EXPECT_EQ(selectedIds().size(), 3u);

  viewModel.cancelConfirmation();
  EXPECT_EQ(viewModel.phase(), Phase::preview);
  EXPECT_EQ(selectedIds().size(), 3u);
}

TEST_F(CleanViewModelTest, CleanAllWithOnlyProtectedCategoriesStaysInPreview) {
  scanTo({category("downloads", "User", {5000}, true), category("backups", "Backups", {7000}, true)});
  EXPECT_EQ(viewModel.phase(), Phase::preview); // there are categories, so the preview opens
  EXPECT_EQ(viewModel.totalReclaimableText(), "0 KB");
  EXPECT_TRUE(viewModel.leftCards().isEmpty());
  EXPECT_TRUE(viewModel.rightCards().isEmpty());

  viewModel.cleanAll();
  EXPECT_EQ(viewModel.phase(), Phase::preview);
  EXPECT_EQ(viewModel.selectedItemCount(), 0);
}

TEST_F(CleanViewModelTest, CleaningOneSectionDropsTheOtherSectionsSelection) {
  scanTo({category("caches", "User", {100, 200}), category("logs", "User", {50}), category("chrome", "Browsers", {10}),
          category("npm", "Developer", {70})});
  viewModel.toggleItem("caches", "caches-0");
  viewModel.toggleCategory("logs");

  viewModel.keepOnlySection("User");
  EXPECT_EQ(selectedIds(), (std::vector<std::string>{"caches-1"}));
  // One selected item is enough for the category to count as selected here.
  EXPECT_TRUE(find("caches").isSelected);
  EXPECT_FALSE(find("chrome").isSelected);

  viewModel.requestConfirmation();
  EXPECT_EQ(viewModel.phase(), Phase::confirming);
  viewModel.cancelConfirmation();
  EXPECT_EQ(selectedIds(), (std::vector<std::string>{"caches-1"}));

  // A section with nothing selected clears everything and asks for nothing.
  viewModel.keepOnlySection("System");
  viewModel.requestConfirmation();
  EXPECT_EQ(viewModel.phase(), Phase::preview);
  EXPECT_TRUE(selectedIds().empty());
}

TEST_F(CleanViewModelTest, ConfirmCleanRemovesItemsByTheirOwnFlagAndRecordsTheDate) {
  scanTo({category("caches", "User", {1000, 2000, 3000}), category("logs", "System", {500}),
          category("downloads", "User", {9000}, true)});
  viewModel.toggleItem("caches", "caches-1"); // category shows unselected, two items stay selected
  viewModel.toggleCategory("logs");
  ASSERT_FALSE(find("caches").isSelected);
  std::optional<halcyra::clean::CleanResult> reported;
  viewModel.setCleanReporter([&](const halcyra::clean::CleanResult& result) { reported = result; });

  service->result = {4000, 2, 0.46};
  service->statuses = {"Removing caches..."};
  viewModel.confirmClean(service, state, logger);
  EXPECT_EQ(viewModel.phase(), Phase::executing);
  waitFor(Phase::summary);

  std::vector<std::string> cleaned;
  for (const auto& item : service->cleanedItems()) cleaned.push_back(item.id);
  EXPECT_EQ(cleaned, (std::vector<std::string>{"caches-0", "caches-2"}));
  EXPECT_TRUE(state.lastCleanDate().isValid());
  EXPECT_EQ(viewModel.freedText(), "4 KB");
  EXPECT_EQ(viewModel.itemsCleaned(), 2);
  ASSERT_TRUE(reported.has_value());
  EXPECT_EQ(reported->freedBytes, 4000);

  const auto log = messages();
  EXPECT_EQ(log[log.size() - 2], "Clean started: 2 items, 4 KB selected");
  EXPECT_EQ(log.back(), "Clean complete: freed 4 KB, 2 items in 0.5s"); // the status is not logged

  // "Done" starts over on the dashboard.
  state.setSelectedNavItem(NavigationItem::clean);
  viewModel.finish(state);
  EXPECT_EQ(viewModel.phase(), Phase::idle);
  EXPECT_TRUE(viewModel.categories().empty());
  EXPECT_EQ(state.selectedNavItem(), NavigationItem::dashboard);
}

TEST_F(CleanViewModelTest, CleanThatFreesNothingStillCountsAndAFailedOneDoesNot) {
  scanTo({category("caches", "User", {1000})});
  service->result = {0, 0, 0.1};
  viewModel.cleanAll();
  viewModel.confirmClean(service, state, logger);
  waitFor(Phase::summary);
  EXPECT_EQ(viewModel.freedText(), "0 KB");
  EXPECT_TRUE(state.lastCleanDate().isValid());

  state.setLastCleanDate({});
  scanTo({category("caches", "User", {1000})});
  service->failure = std::make_exception_ptr(halcyra::core::CleanError(halcyra::core::CleanError::Kind::cleanFailed, "x"));
  viewModel.cleanAll();
  viewModel.confirmClean(service, state, logger);
  waitFor(Phase::error);
  EXPECT_EQ(viewModel.errorText(), "Cleanup failed. Please try again.");
  EXPECT_EQ(messages().back(), "Clean error: Cleanup failed. Please try again.");
  EXPECT_FALSE(state.lastCleanDate().isValid());
}

TEST_F(CleanViewModelTest, AutoScanStartsOnlyFromIdleAndOtherwiseKeepsTheFlag) {
  const auto request = [&] {
    state.setShouldAutoScan(true);
    return viewModel.autoScanIfRequested(service, state, logger);
  };

  // Preview, confirming, summary, error: nothing runs and the flag stays for later.
  scanTo({category("caches", "User", {1000})});
  EXPECT_FALSE(request());
  EXPECT_TRUE(state.shouldAutoScan());
  EXPECT_EQ(viewModel.phase(), Phase::preview);

  viewModel.cleanAll();
  EXPECT_FALSE(request());
  EXPECT_EQ(viewModel.phase(), Phase::confirming);

  viewModel.confirmClean(service, state, logger);
  waitFor(Phase::summary);
  EXPECT_FALSE(request());
  EXPECT_EQ(viewModel.phase(), Phase::summary);

  service->failure = std::make_exception_ptr(std::runtime_error("gone"));
  viewModel.rescan(service, logger);
  waitFor(Phase::error);
  EXPECT_FALSE(request());
  EXPECT_TRUE(state.shouldAutoScan());

  // While a scan runs (or a clean executes) no second one starts.
  service->failure = nullptr;
  service->hold();
  viewModel.reset();
  viewModel.scan(service, logger);
  EXPECT_FALSE(request());
  EXPECT_EQ(viewModel.phase(), Phase::scanning);
  service->release();
  waitFor(Phase::preview);

  // From idle the flag is consumed and a scan starts.
  viewModel.reset();
  EXPECT_TRUE(request());
  EXPECT_FALSE(state.shouldAutoScan());
  EXPECT_EQ(viewModel.phase(), Phase::scanning);
  waitFor(Phase::preview);
}

TEST_F(CleanViewModelTest, ConfirmationListsSectionsWithSelectedItemsInNameOrder) {
  scanTo({category("caches", "User", {1000}), category("logs", "User", {1000}), category("chrome", "Browsers", {2000}),
          category("npm", "Developer", {100})});
  viewModel.toggleCategory("npm");
  const auto rows = viewModel.confirmSections();
  ASSERT_EQ(rows.size(), 2);
  EXPECT_EQ(rows[0].toMap()["name"].toString(), "Browsers");
  EXPECT_EQ(rows[1].toMap()["name"].toString(), "User");
  EXPECT_EQ(rows[1].toMap()["categoryCount"].toInt(), 2);
  EXPECT_EQ(rows[1].toMap()["sizeText"].toString(), "2 KB");
}

TEST_F(CleanViewModelTest, ReviewListsLargestCategoriesFirstAndSkippedOnesApart) {
  scanTo({category("small", "User", {100}), category("tie-a", "User", {300}), category("tie-b", "User", {200, 100}),
          category("skipped", "User", {}, false, "Mail is running"), category("downloads", "User", {9999}, true)});
  const auto reviewable = viewModel.reviewCategories("User");
  ASSERT_EQ(reviewable.size(), 3);
  EXPECT_EQ(reviewable[0].toMap()["id"].toString(), "tie-a");
  EXPECT_EQ(reviewable[1].toMap()["id"].toString(), "tie-b");
  EXPECT_EQ(reviewable[2].toMap()["id"].toString(), "small");
  const auto skipped = viewModel.skippedCategories("User");
  ASSERT_EQ(skipped.size(), 1);
  EXPECT_EQ(skipped[0].toMap()["reason"].toString(), "Mail is running");
  EXPECT_TRUE(viewModel.categoryInfo("downloads").isEmpty());

  // The card counts the skipped category, and the items list follows check marks row by row.
  const auto card = viewModel.leftCards().at(0).toMap();
  EXPECT_EQ(card["categoryCount"].toInt(), 3);
  EXPECT_EQ(card["skippedCount"].toInt(), 1);
  auto* items = viewModel.itemsModel();
  items->setCategoryId("tie-b");
  ASSERT_EQ(items->rowCount(), 2);
  QSignalSpy changed(items, &QAbstractItemModel::dataChanged);
  viewModel.toggleItem("tie-b", "tie-b-1");
  ASSERT_EQ(changed.count(), 1);
  EXPECT_EQ(changed.at(0).at(0).value<QModelIndex>().row(), 1);
  EXPECT_FALSE(items->data(items->index(1), halcyra::clean::CleanItemsModel::IsSelectedRole).toBool());
}

TEST(BackgroundTask, ResultsForAnObjectThatIsGoneAreDropped) {
  int delivered = 0;
  auto* receiver = new QObject;
  halcyra::app::postToInterface(receiver, [&] { ++delivered; });
  auto relay = halcyra::app::statusRelay(receiver, [&](const QString&) { ++delivered; });
  relay("late status");
  delete receiver;
  QCoreApplication::processEvents();
  EXPECT_EQ(delivered, 0);

  QObject alive;
  halcyra::app::postToInterface(&alive, [&] { ++delivered; });
  QCoreApplication::processEvents();
  EXPECT_EQ(delivered, 1);
}
