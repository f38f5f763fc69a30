#include <gtest/gtest.h>

#include <functional>
#include <thread>

#include <QCoreApplication>
#include <QSettings>
#include <QSignalSpy>

#include "FakeShredderService.h"
#include "QtPrinting.h"
#include "ViewModelTesting.h"
#include "shredder/ShredderError.h"
#include "shredder/viewmodel/ShredderViewModel.h"
#include "support/TempDir.h"

using halcyra::app::AppState;
using halcyra::app::DebugLogger;
using halcyra::app::NavigationItem;
using halcyra::app::ServiceHandle;
using halcyra::shredder::ShredderFile;
using halcyra::shredder::ShredderServiceProtocol;
using halcyra::shredder::ShredderViewModel;
using halcyra::testing::FakeShredderService;
using Phase = ShredderViewModel::Phase;

namespace {

class ShredderViewModelTest : public ::testing::Test {
protected:
  ShredderViewModelTest() {
    service->place("/d/a.txt", {{"/d/a.txt", 1000}});
    service->place("/d/b.txt", {{"/d/b.txt", 2000}});
    service->place("/d", {{"/d/a.txt", 1000}, {"/d/b.txt", 2000}, {"/d/sub/c.txt", 4000}});
  }

  halcyra::testing::TempDir home;
  std::shared_ptr<FakeShredderService> service = std::make_shared<FakeShredderService>();
  DebugLogger logger;
  AppState state{std::make_unique<QSettings>(QString::fromStdString(home / "defaults.ini"), QSettings::IniFormat)};
  ShredderViewModel viewModel;

  static bool waitUntil(const std::function<bool()>& done) { return halcyra::testing::settle(done); }

  void add(std::vector<std::string> paths) {
    viewModel.addFiles(std::move(paths), service);
    ASSERT_TRUE(waitUntil([&] { return !viewModel.isResolving(); }));
  }

  void waitFor(Phase phase) {
    ASSERT_TRUE(waitUntil([&] { return viewModel.phase() == phase; }))
        << "phase " << viewModel.phaseName().toStdString();
  }

  std::vector<std::string> paths() const {
    std::vector<std::string> result;
    for (const auto& file : viewModel.files()) result.push_back(file.path);
    return result;
  }

  std::string idOf(const std::string& path) const {
    for (const auto& file : viewModel.files()) {
      if (file.path == path) return file.id;
    }
    return {};
  }

  QString qid(const std::string& path) const { return QString::fromStdString(idOf(path)); }

  std::vector<std::string> messages() const { return halcyra::testing::messages(logger); }
};

using StringList = std::vector<std::string>;

} // namespace

TEST_F(ShredderViewModelTest, AFileAlreadyListedIsNotListedAgain) {
  // The same file in two drops: the second changes nothing, the phase stays.
  add({"/d/a.txt"});
  const std::string firstId = idOf("/d/a.txt");
  QSignalSpy phases(&viewModel, &ShredderViewModel::phaseChanged);
  add({"/d/a.txt"});
  EXPECT_EQ(paths(), (StringList{"/d/a.txt"}));
  EXPECT_EQ(idOf("/d/a.txt"), firstId);
  EXPECT_EQ(phases.count(), 0);

  // The folder adds only what is not listed yet, in the folder's order.
  add({"/d"});
  EXPECT_EQ(paths(), (StringList{"/d/a.txt", "/d/b.txt", "/d/sub/c.txt"}));

  // Within one addition nothing is folded: a path the engine gives twice stays twice.
  viewModel.reset();
  add({"/d/a.txt", "/d"});
  EXPECT_EQ(paths(), (StringList{"/d/a.txt", "/d/a.txt", "/d/b.txt", "/d/sub/c.txt"}));
}

TEST_F(ShredderViewModelTest, AdditionsThatResolveToNothingLeaveTheToolAsItWas) {
  add({"/gone", "/hidden-only"});
  EXPECT_EQ(viewModel.phase(), Phase::idle);
  EXPECT_TRUE(viewModel.files().empty());
  EXPECT_TRUE(messages().empty()); // skipped without a word

  // Adding while the confirmation or the summary shows leaves the phase alone.
  add({"/d/a.txt"});
  viewModel.requestConfirmation();
  add({"/d/b.txt"});
  EXPECT_EQ(viewModel.phase(), Phase::confirming);
  EXPECT_EQ(viewModel.fileCount(), 2);
}

TEST_F(ShredderViewModelTest, ResolvingRunsOnAWorkerWhileTheInterfaceKeepsGoing) {
  service->hold();
  QSignalSpy resolving(&viewModel, &ShredderViewModel::resolvingChanged);
  viewModel.addFiles(StringList{"/d"}, service);
  ASSERT_TRUE(waitUntil([&] { return service->waiting(); }));
  // The engine is stuck inside the walk, yet the interface thread runs events and the
  // tool can still be used.
  EXPECT_TRUE(viewModel.isResolving());
  EXPECT_EQ(viewModel.phase(), Phase::idle);
  viewModel.setPasses(7);
  EXPECT_EQ(viewModel.passes(), 7);
  EXPECT_NE(service->threads().front(), std::this_thread::get_id());

  service->release();
  ASSERT_TRUE(waitUntil([&] { return !viewModel.isResolving(); }));
  EXPECT_EQ(viewModel.phase(), Phase::preview);
  EXPECT_EQ(viewModel.fileCount(), 3);
  EXPECT_EQ(resolving.count(), 2);
}

TEST_F(ShredderViewModelTest, AdditionsLandInTheOrderTheyWereMade) {
  service->hold();
  viewModel.addFiles(StringList{"/d/b.txt"}, service);
  viewModel.addFiles(StringList{"/d/a.txt"}, service);
  viewModel.addFiles(StringList{"/d"}, service);
  ASSERT_TRUE(waitUntil([&] { return service->waiting(); }));
  service->release();
  ASSERT_TRUE(waitUntil([&] { return !viewModel.isResolving(); }));
  EXPECT_EQ(paths(), (StringList{"/d/b.txt", "/d/a.txt", "/d/sub/c.txt"}));
}

TEST_F(ShredderViewModelTest, ResetDropsAdditionsStillBeingResolved) {
  service->hold();
  viewModel.addFiles(StringList{"/d"}, service);
  viewModel.addFiles(StringList{"/d/a.txt"}, service);
  ASSERT_TRUE(waitUntil([&] { return service->waiting(); }));
  viewModel.reset();
  EXPECT_FALSE(viewModel.isResolving());

  // What the user adds after the reset is all the list shows.
  viewModel.addFiles(StringList{"/d/b.txt"}, service);
  service->release();
  ASSERT_TRUE(waitUntil([&] { return !viewModel.isResolving(); }));
  // The walk from before the reset has ended too; its result, whenever it arrives, is dropped.
  ASSERT_TRUE(waitUntil([&] { return service->resolvesDone() == 2; }));
  for (int i = 0; i < 10; ++i) QCoreApplication::processEvents();
  EXPECT_EQ(paths(), (StringList{"/d/b.txt"}));
}

TEST_F(ShredderViewModelTest, CheckMarksDecideTotalsAndWhetherShreddingCanStart) {
  add({"/d"});
  viewModel.toggleFile(qid("/d/b.txt"));
  EXPECT_EQ(viewModel.selectedCount(), 2);
  EXPECT_EQ(viewModel.totalSize(), 5000);
  // An unselected file still counts among the rows.
  EXPECT_EQ(viewModel.fileCount(), 3);

  QSignalSpy changes(&viewModel, &ShredderViewModel::filesChanged);
  viewModel.toggleFile(QStringLiteral("no-such-id"));
  EXPECT_EQ(changes.count(), 0);
  EXPECT_EQ(viewModel.selectedCount(), 2);

  // With nothing ticked the foot shows the formatted zero and "Shred Files" does nothing.
  viewModel.toggleFile(qid("/d/a.txt"));
  viewModel.toggleFile(qid("/d/sub/c.txt"));
  EXPECT_EQ(viewModel.selectedCount(), 0);
  EXPECT_EQ(viewModel.totalSizeText(), "0 KB");
  viewModel.requestConfirmation();
  EXPECT_EQ(viewModel.phase(), Phase::preview);
  viewModel.confirmShred(service, logger);
  EXPECT_EQ(viewModel.phase(), Phase::preview);
  EXPECT_EQ(service->runs(), 0);

  viewModel.toggleFile(qid("/d/a.txt"));
  viewModel.requestConfirmation();
  EXPECT_EQ(viewModel.phase(), Phase::confirming);
  viewModel.cancelConfirmation();
  EXPECT_EQ(viewModel.phase(), Phase::preview);
  EXPECT_EQ(viewModel.selectedCount(), 1);
}

TEST_F(ShredderViewModelTest, RemovingTheLastRowReturnsToIdleAndKeepsThePasses) {
  add({"/d/a.txt", "/d/b.txt"});
  viewModel.setPasses(7);
  viewModel.removeFile(qid("/d/a.txt"));
  EXPECT_EQ(paths(), (StringList{"/d/b.txt"}));
  EXPECT_EQ(viewModel.phase(), Phase::preview);
  viewModel.removeFile(QStringLiteral("no-such-id"));
  EXPECT_EQ(viewModel.fileCount(), 1);

  // From the confirmation as well: no rows, no list.
  viewModel.requestConfirmation();
  viewModel.removeFile(qid("/d/b.txt"));
  EXPECT_EQ(viewModel.phase(), Phase::idle);
  EXPECT_EQ(viewModel.passes(), 7);
}

TEST_F(ShredderViewModelTest, PassesAreOneThreeOrSeven) {
  EXPECT_EQ(viewModel.passes(), 3);
  QSignalSpy changes(&viewModel, &ShredderViewModel::passesChanged);
  for (int passes : {0, 2, 5, 8, -1}) viewModel.setPasses(passes);
  EXPECT_EQ(viewModel.passes(), 3);
  EXPECT_EQ(changes.count(), 0);
  viewModel.setPasses(1);
  EXPECT_EQ(viewModel.passes(), 1);
  viewModel.setPasses(7);
  EXPECT_EQ(viewModel.passes(), 7);
  viewModel.reset();
  EXPECT_EQ(viewModel.passes(), 7);
}

TEST_F(ShredderViewModelTest, RunShredsTheSelectionAndSumsItUp) {
  add({"/d"});
  viewModel.toggleFile(qid("/d/b.txt"));
  viewModel.setPasses(7);
  service->progress = {{"Shredding a.txt\u2026", 0.0}, {"Pass 1/7: a.txt", 0.1}, {"Complete", 1.0}};
  service->result = {2, 5000, 2.34, 7};
  service->hold();

  viewModel.requestConfirmation();
  viewModel.confirmShred(service, logger);
  EXPECT_EQ(viewModel.phase(), Phase::shredding);
  EXPECT_EQ(viewModel.progressMessage(), "");
  EXPECT_EQ(viewModel.progressFraction(), 0.0);
  // A second press before the sheet is gone starts nothing.
  viewModel.confirmShred(service, logger);
  // There is no way out of a run.
  viewModel.reset();
  EXPECT_EQ(viewModel.phase(), Phase::shredding);

  ASSERT_TRUE(waitUntil([&] { return viewModel.progressMessage() == "Complete"; }));
  EXPECT_EQ(viewModel.progressFraction(), 1.0);
  EXPECT_EQ(viewModel.phase(), Phase::shredding);
  service->release();
  waitFor(Phase::summary);

  EXPECT_EQ(service->runs(), 1);
  EXPECT_EQ(service->shredPasses(), 7);
  const auto shredded = service->shredded();
  ASSERT_EQ(shredded.size(), 2u);
  EXPECT_EQ(shredded[0].path, "/d/a.txt");
  EXPECT_EQ(shredded[1].path, "/d/sub/c.txt");

  EXPECT_EQ(viewModel.filesShredded(), 2);
  EXPECT_EQ(viewModel.destroyedText(), "5 KB");
  EXPECT_EQ(viewModel.resultPasses(), 7);
  // The run leaves the list as it was until the user resets.
  EXPECT_EQ(viewModel.fileCount(), 3);
  EXPECT_EQ(messages(), (StringList{"Shredder started: 2 files, 5 KB, 7 passes",
                                    "Shredder complete: 2 files, 5 KB destroyed in 2.3s"}));

  viewModel.reset();
  EXPECT_EQ(viewModel.phase(), Phase::idle);
  EXPECT_TRUE(viewModel.files().empty());
  EXPECT_EQ(viewModel.progressMessage(), "");
  EXPECT_EQ(viewModel.progressFraction(), 0.0);
}

TEST_F(ShredderViewModelTest, FilesRefusedDuringTheRunAreLoggedAndNotCounted) {
  add({"/d/a.txt", "/d/b.txt"});
  service->result = {1, 1000, 0.5, 3};
  service->lateRefusals = {{"/d/b.txt", "is a symbolic link"}};
  viewModel.confirmShred(service, logger);
  waitFor(Phase::summary);
  EXPECT_EQ(viewModel.filesShredded(), 1);
  const auto log = messages();
  ASSERT_EQ(log.size(), 3u);
  EXPECT_EQ(log[1], "Shredder skipped /d/b.txt: is a symbolic link");
  EXPECT_EQ(logger.entries()[1].level, halcyra::core::LogEntry::LogLevel::warn);
}

TEST_F(ShredderViewModelTest, AFailedRunShowsTheErrorAndRetryKeepsTheList) {
  add({"/d/a.txt"});
  service->failure = std::make_exception_ptr(
      halcyra::shredder::ShredderError(halcyra::shredder::ShredderError::Kind::cannotOpenFile, "/d/a.txt"));
  viewModel.confirmShred(service, logger);
  waitFor(Phase::error);
  EXPECT_EQ(viewModel.errorText(), "Cannot open file for writing: a.txt");
  EXPECT_EQ(messages().back(), "Shredder error: Cannot open file for writing: a.txt");
  EXPECT_EQ(logger.entries().back().level, halcyra::core::LogEntry::LogLevel::error);

  viewModel.retry();
  EXPECT_EQ(viewModel.phase(), Phase::preview);
  EXPECT_EQ(paths(), (StringList{"/d/a.txt"}));

  // "Done" on the error screen only resets; it does not leave the tool.
  viewModel.confirmShred(service, logger);
  waitFor(Phase::error);
  state.setSelectedNavItem(NavigationItem::shredder);
  viewModel.reset();
  EXPECT_EQ(viewModel.phase(), Phase::idle);
  EXPECT_EQ(state.selectedNavItem(), NavigationItem::shredder);
}

TEST_F(ShredderViewModelTest, ScreensPassLocalFileUrlsAndTheRightService) {
  auto* handle = ServiceHandle::wrap<ShredderServiceProtocol>(service, &viewModel);
  viewModel.addFiles(QList<QUrl>{QUrl(QStringLiteral("https://example.com/d/a.txt")),
                                 QUrl::fromLocalFile(QStringLiteral("/d/b.txt"))},
                     handle);
  ASSERT_TRUE(waitUntil([&] { return !viewModel.isResolving(); }));
  EXPECT_EQ(paths(), (StringList{"/d/b.txt"}));

  // Another tool's service is not taken for the shredder's.
  auto* wrong = ServiceHandle::wrap<int>(std::make_shared<int>(0), &viewModel);
  viewModel.addFiles(QList<QUrl>{QUrl::fromLocalFile(QStringLiteral("/d/a.txt"))}, wrong);
  viewModel.confirmShred(wrong, &logger);
  EXPECT_FALSE(viewModel.isResolving());
  EXPECT_EQ(viewModel.phase(), Phase::preview);

  viewModel.confirmShred(handle, &logger);
  waitFor(Phase::summary);
  viewModel.finish(&state);
  EXPECT_EQ(state.selectedNavItem(), NavigationItem::dashboard);
}

TEST_F(ShredderViewModelTest, TheListModelFollowsChecksAndRemovals) {
  add({"/d"});
  auto* model = viewModel.filesModel();
  QSignalSpy changed(model, &QAbstractItemModel::dataChanged);
  QSignalSpy removed(model, &QAbstractItemModel::rowsRemoved);
  viewModel.toggleFile(qid("/d/b.txt"));
  ASSERT_EQ(changed.count(), 1);
  EXPECT_EQ(changed.first().at(0).toModelIndex().row(), 1);
  const auto roles = model->roleNames();
  const int selectedRole = roles.key("isSelected");
  EXPECT_FALSE(model->data(model->index(1), selectedRole).toBool());
  EXPECT_EQ(model->data(model->index(2), roles.key("name")).toString(), "c.txt");
  EXPECT_EQ(model->data(model->index(2), roles.key("sizeText")).toString(), "4 KB");

  viewModel.removeFile(qid("/d/a.txt"));
  ASSERT_EQ(removed.count(), 1);
  EXPECT_EQ(removed.first().at(1).toInt(), 0);
  EXPECT_EQ(model->rowCount(), 2);
  EXPECT_EQ(model->data(model->index(0), roles.key("path")).toString(), "/d/b.txt");
}
