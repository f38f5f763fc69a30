#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <mutex>
#include <stdexcept>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QSettings>
#include <QSignalSpy>

#include "QtPrinting.h"
#include "ViewModelTesting.h"
#include "analyzer/viewmodel/DiskAnalyzerViewModel.h"
#include "support/Gate.h"
#include "support/TempDir.h"

using halcyra::analyzer::DirectoryNode;
using halcyra::analyzer::DirectoryRowsModel;
using halcyra::analyzer::DiskAnalyzerScanResult;
using halcyra::analyzer::DiskAnalyzerServiceProtocol;
using halcyra::analyzer::DiskAnalyzerViewModel;
using halcyra::app::AppState;
using halcyra::app::DebugLogger;
using Phase = DiskAnalyzerViewModel::Phase;

namespace {

/// A walk that returns what it was given after reporting the given texts, remembers the paths it
/// was asked for, and can be held mid-walk until released.
class FakeDiskAnalyzerService final : public DiskAnalyzerServiceProtocol {
public:
  DiskAnalyzerScanResult result;
  std::vector<std::string> statuses;
  bool fail = false;

  std::vector<std::string> scannedPaths() {
    std::lock_guard lock(mutex_);
    return scanned_;
  }
  void hold() { gate_.hold(); }
  void release() { gate_.release(); }

  DiskAnalyzerScanResult scanDirectory(const std::string& path,
                                       const std::function<void(const std::string&)>& onProgress) override {
    DiskAnalyzerScanResult answer;
    {
      std::unique_lock lock(mutex_);
      scanned_.push_back(path);
      answer = result;
    }
    for (const auto& status : statuses) onProgress(status);
    gate_.pass();
    std::lock_guard lock(mutex_);
    returned_ = true;
    if (fail) throw std::runtime_error("the walk broke down");
    return answer;
  }
  bool returned() {
    std::lock_guard lock(mutex_);
    return returned_;
  }

private:
  std::mutex mutex_;
  halcyra::testing::Gate gate_;
  bool returned_ = false;
  std::vector<std::string> scanned_;
};

/// The real Trash of a temporary home, and a file manager that only remembers what it was
/// asked to show.
class TestWorkspace final : public halcyra::platform::Workspace {
public:
  explicit TestWorkspace(std::string trash) : trash_(nullptr, std::move(trash)) {}

  halcyra::platform::TrashOutcome moveToTrash(const std::string& path) override { return trash_.moveToTrash(path); }
  bool revealInFileManager(const std::string& path) override {
    std::lock_guard lock(mutex_);
    revealed_.push_back(path);
    return false;
  }
  bool openUrl(const std::string&) override { return false; }

  std::vector<std::string> revealed() {
    std::lock_guard lock(mutex_);
    return revealed_;
  }

private:
  halcyra::platform::FreedesktopWorkspace trash_;
  std::mutex mutex_;
  std::vector<std::string> revealed_;
};

DirectoryNode node(const std::string& path, std::int64_t ownSize, std::vector<DirectoryNode> children = {}) {
  DirectoryNode result;
  result.id = "id:" + path;
  result.path = path;
  result.name = path.substr(path.rfind('/') + 1);
  result.size = ownSize;
  for (const auto& child : children) result.size += child.size;
  result.children = std::move(children);
  return result;
}

/// /scan holds Music (600, with Albums and Live inside), apps (300), Books (300, empty of
/// folders) and zoo (50).
DiskAnalyzerScanResult sampleResult() {
  DiskAnalyzerScanResult result;
  result.root = node("/scan", 0,
                     {node("/scan/apps", 300), node("/scan/Music", 90,
                                                     {node("/scan/Music/Albums", 400, {node("/scan/Music/Albums/A", 10)}),
                                                      node("/scan/Music/Live", 100)}),
                      node("/scan/Books", 300), node("/scan/zoo", 50)});
  result.totalSize = result.root.size;
  result.fileCount = 12;
  result.directoryCount = 8;
  result.duration = 0.46;
  result.largestFiles = {{"file-1", "/scan/Music/Albums/big.flac", "big.flac", 390}};
  return result;
}

std::vector<std::string> paths(const std::vector<const DirectoryNode*>& nodes) {
  std::vector<std::string> result;
  for (const auto* n : nodes) result.push_back(n->path);
  return result;
}

class DiskAnalyzerViewModelTest : public ::testing::Test {
protected:
  halcyra::testing::TempDir home;
  std::shared_ptr<FakeDiskAnalyzerService> service = std::make_shared<FakeDiskAnalyzerService>();
  std::shared_ptr<TestWorkspace> workspace = std::make_shared<TestWorkspace>(home / ".local/share/Trash");
  DebugLogger logger;
  AppState state{std::make_unique<QSettings>(QString::fromStdString(home / "defaults.ini"), QSettings::IniFormat)};
  DiskAnalyzerViewModel viewModel{workspace, QString::fromStdString(home.path())};

  template <class Condition>
  void waitUntil(Condition done) {
    ASSERT_TRUE(halcyra::testing::settle(done));
  }

  void scanSample() {
    service->result = sampleResult();
    viewModel.scan(QStringLiteral("/scan"), service, logger);
    waitUntil([&] { return viewModel.phase() == Phase::results; });
  }

  /// The id of the shown child at `path`; one that matches nothing when none is shown there.
  std::string idOf(const std::string& path) const {
    for (const DirectoryNode* child : viewModel.displayChildren()) {
      if (child->path == path) return child->id;
    }
    return "not shown: " + path;
  }
  void drillInto(const std::string& path) { viewModel.drillInto(QString::fromStdString(idOf(path))); }
  void toggle(const std::string& path) { viewModel.toggleSelection(QString::fromStdString(idOf(path))); }

  std::vector<std::string> messages() const { return halcyra::testing::messages(logger); }

  QVariant rowData(int row, int role) const {
    return viewModel.rows()->data(viewModel.rows()->index(row), role);
  }
};

} // namespace

TEST_F(DiskAnalyzerViewModelTest, ScanShowsItsStatusThenTheResultsAtTheRootAndLogsBothEnds) {
  service->result = sampleResult();
  service->statuses = {"Starting scan…", "Scan complete: 12 files, 8 dirs"};
  service->hold();
  QSignalSpy statuses(&viewModel, &DiskAnalyzerViewModel::scanStatusChanged);
  viewModel.scan(QStringLiteral("/scan"), service, logger);
  EXPECT_EQ(viewModel.phase(), Phase::scanning);
  EXPECT_FALSE(viewModel.hasResult());
  waitUntil([&] { return viewModel.scanStatus() == QStringLiteral("Scan complete: 12 files, 8 dirs"); });
  EXPECT_EQ(viewModel.phase(), Phase::scanning); // the texts come while the walk still runs
  EXPECT_EQ(statuses.count(), 2);
  service->release();
  waitUntil([&] { return viewModel.phase() == Phase::results; });

  EXPECT_EQ(service->scannedPaths(), std::vector<std::string>{"/scan"});
  EXPECT_EQ(viewModel.currentNode(), &viewModel.scanResult()->root);
  EXPECT_TRUE(viewModel.breadcrumb().empty());
  EXPECT_EQ(viewModel.totalSizeText(), QStringLiteral("1 KB"));
  EXPECT_EQ(viewModel.rootName(), QStringLiteral("scan"));
  EXPECT_EQ(viewModel.largestFiles().size(), 1);
  EXPECT_EQ(messages(), (std::vector<std::string>{"Disk analyzer scan started: /scan",
                                                  "Disk analyzer complete: 12 files, 8 dirs, 1 KB total in 0.5s"}));
  EXPECT_EQ(logger.entries().back().source, halcyra::core::LogEntry::LogSource::diskAnalyzer);
}

TEST_F(DiskAnalyzerViewModelTest, AFolderThatCouldNotBeReadShowsEmptyResultsAndAFailedWalkTheErrorScreen) {
  DiskAnalyzerScanResult unreadable;
  unreadable.root = node("/locked", 0);
  unreadable.root.isPermissionDenied = true;
  unreadable.directoryCount = 1;
  service->result = unreadable;
  viewModel.scan(QStringLiteral("/locked"), service, logger);
  waitUntil([&] { return viewModel.phase() == Phase::results; });
  EXPECT_EQ(viewModel.totalSizeText(), QStringLiteral("0 KB"));
  EXPECT_TRUE(viewModel.displayChildren().empty());
  EXPECT_TRUE(viewModel.treemapCells(400, 300).isEmpty());

  service->fail = true;
  viewModel.rescan(service, logger);
  waitUntil([&] { return viewModel.phase() == Phase::error; });
  EXPECT_FALSE(viewModel.errorText().isEmpty());
  viewModel.reset();
  EXPECT_EQ(viewModel.phase(), Phase::idle);
  EXPECT_FALSE(viewModel.hasResult());
}

TEST_F(DiskAnalyzerViewModelTest, ChildrenShowLargestFirstKeepingTheScanOrderAmongEqualSizesOrByName) {
  scanSample();
  EXPECT_EQ(paths(viewModel.displayChildren()),
            (std::vector<std::string>{"/scan/Music", "/scan/apps", "/scan/Books", "/scan/zoo"}));
  viewModel.setSortOrder(DiskAnalyzerViewModel::SortOrder::nameAscending);
  EXPECT_EQ(paths(viewModel.displayChildren()),
            (std::vector<std::string>{"/scan/apps", "/scan/Books", "/scan/Music", "/scan/zoo"}));
  EXPECT_EQ(viewModel.rows()->rowCount(), 4);
  EXPECT_EQ(rowData(0, DirectoryRowsModel::NameRole).toString(), QStringLiteral("apps"));
}

TEST_F(DiskAnalyzerViewModelTest, RowsShowEachChildsShareOfTheFolderOnScreen) {
  scanSample();
  // Music is 600 of 1250.
  EXPECT_EQ(rowData(0, DirectoryRowsModel::ShareTextRole).toString(), QStringLiteral("48.0%"));
  EXPECT_DOUBLE_EQ(rowData(0, DirectoryRowsModel::BarWidthRole).toDouble(), 48.0 * 0.8);
  EXPECT_TRUE(rowData(0, DirectoryRowsModel::HasChildrenRole).toBool());
  EXPECT_FALSE(rowData(1, DirectoryRowsModel::HasChildrenRole).toBool());
  // zoo is 4 %: its bar is the 2-point minimum, not 3.2.
  EXPECT_EQ(rowData(3, DirectoryRowsModel::ShareTextRole).toString(), QStringLiteral("4.0%"));
  EXPECT_DOUBLE_EQ(rowData(3, DirectoryRowsModel::BarWidthRole).toDouble(), 3.2);
  EXPECT_DOUBLE_EQ(DirectoryRowsModel::barWidth(1.0), 2.0);
  EXPECT_DOUBLE_EQ(DirectoryRowsModel::sharePercent(50, 0), 0.0);

  drillInto("/scan/Music");
  EXPECT_EQ(rowData(0, DirectoryRowsModel::PathRole).toString(), QStringLiteral("/scan/Music/Albums"));
  EXPECT_EQ(rowData(0, DirectoryRowsModel::ShareTextRole).toString(), QStringLiteral("68.3%")); // 410 of 600
}

TEST_F(DiskAnalyzerViewModelTest, DrillingDownAndTheBreadcrumbWalkTheTreeOneLevelAtATime) {
  scanSample();
  QSignalSpy display(&viewModel, &DiskAnalyzerViewModel::displayChanged);
  drillInto("/scan/Books"); // no sub-folders: nothing happens
  drillInto("/scan/Music/Albums"); // not shown at this level
  EXPECT_TRUE(viewModel.breadcrumb().empty());
  EXPECT_EQ(display.count(), 0);

  drillInto("/scan/Music");
  drillInto("/scan/Music/Albums");
  ASSERT_EQ(viewModel.breadcrumb().size(), 2u);
  EXPECT_EQ(viewModel.currentNode()->path, "/scan/Music/Albums");
  EXPECT_EQ(paths(viewModel.displayChildren()), std::vector<std::string>{"/scan/Music/Albums/A"});
  EXPECT_EQ(viewModel.breadcrumbEntries().size(), 2);

  viewModel.navigateToBreadcrumb(1); // the last entry: unchanged
  viewModel.navigateToBreadcrumb(2); // past the end: unchanged
  viewModel.navigateToBreadcrumb(-1);
  EXPECT_EQ(viewModel.breadcrumb().size(), 2u);
  viewModel.navigateToBreadcrumb(0);
  ASSERT_EQ(viewModel.breadcrumb().size(), 1u);
  EXPECT_EQ(viewModel.currentNode()->path, "/scan/Music");
  viewModel.navigateToRoot();
  EXPECT_TRUE(viewModel.breadcrumb().empty());
  EXPECT_EQ(viewModel.displayChildren().size(), 4u);
}

TEST_F(DiskAnalyzerViewModelTest, MarksSurviveNavigationAndANestedMarkCountsTwice) {
  scanSample();
  QSignalSpy selection(&viewModel, &DiskAnalyzerViewModel::selectionChanged);
  viewModel.requestDelete();
  EXPECT_FALSE(viewModel.isConfirmingDelete()); // nothing marked

  toggle("/scan/Music");
  drillInto("/scan/Music");
  toggle("/scan/Music/Albums");
  EXPECT_EQ(viewModel.selectedCount(), 2);
  EXPECT_EQ(viewModel.selectedSize(), 600 + 410);
  EXPECT_TRUE(rowData(0, DirectoryRowsModel::IsSelectedRole).toBool());
  viewModel.navigateToRoot();
  EXPECT_EQ(viewModel.selectedCount(), 2);
  EXPECT_TRUE(viewModel.isSelected(QStringLiteral("id:/scan/Music")));

  // A path the tree does not hold weighs nothing; a second toggle unmarks.
  viewModel.toggleSelectionOfPath("/elsewhere");
  EXPECT_EQ(viewModel.selectedSize(), 1010);
  viewModel.toggleSelectionOfPath("/elsewhere");
  toggle("/scan/Music");
  EXPECT_EQ(viewModel.selectedPaths(), std::set<std::string>{"/scan/Music/Albums"});
  EXPECT_EQ(selection.count(), 5);

  viewModel.requestDelete();
  EXPECT_TRUE(viewModel.isConfirmingDelete());
  viewModel.cancelDelete();
  EXPECT_FALSE(viewModel.isConfirmingDelete());
  EXPECT_EQ(viewModel.selectedCount(), 1);
  viewModel.deselectAll();
  EXPECT_EQ(viewModel.selectedCount(), 0);
  EXPECT_EQ(viewModel.selectedSize(), 0);
}

TEST_F(DiskAnalyzerViewModelTest, ResetForgetsTheScanButKeepsTabAndOrderAndRescanGoesBackToTheRoot) {
  EXPECT_EQ(viewModel.rootName(), QStringLiteral("Root"));
  viewModel.rescan(service, logger); // without a result: the home
  waitUntil([&] { return viewModel.phase() == Phase::results; });
  EXPECT_EQ(service->scannedPaths().back(), home.path());

  scanSample();
  viewModel.setSelectedTab(QStringLiteral("Largest Files"));
  viewModel.setSortOrder(DiskAnalyzerViewModel::SortOrder::nameAscending);
  drillInto("/scan/Music");
  toggle("/scan/Music/Live");
  viewModel.requestDelete();
  viewModel.reset();
  EXPECT_EQ(viewModel.phase(), Phase::idle);
  EXPECT_FALSE(viewModel.hasResult());
  EXPECT_TRUE(viewModel.breadcrumb().empty());
  EXPECT_TRUE(viewModel.selectedPaths().empty());
  EXPECT_FALSE(viewModel.isConfirmingDelete());
  EXPECT_EQ(viewModel.rows()->rowCount(), 0);
  EXPECT_EQ(viewModel.selectedTab(), QStringLiteral("Largest Files"));
  EXPECT_EQ(viewModel.sortOrder(), DiskAnalyzerViewModel::SortOrder::nameAscending);

  scanSample();
  drillInto("/scan/Music");
  viewModel.rescan(service, logger);
  EXPECT_EQ(viewModel.phase(), Phase::scanning);
  waitUntil([&] { return viewModel.phase() == Phase::results; });
  EXPECT_EQ(service->scannedPaths().back(), "/scan");
  EXPECT_TRUE(viewModel.breadcrumb().empty());
}

TEST_F(DiskAnalyzerViewModelTest, AScanOvertakenByANewerOneLeavesNoTrace) {
  service->result = sampleResult();
  service->statuses = {"Scanning: old (5 files found)"};
  service->hold();
  viewModel.scan(QStringLiteral("/first"), service, logger);
  auto second = std::make_shared<FakeDiskAnalyzerService>();
  second->result.root = node("/second", 7);
  second->hold();
  viewModel.scan(QStringLiteral("/second"), second, logger);

  // The older walk ends first; what it posts must not reach the screen.
  service->release();
  waitUntil([&] { return service->returned(); });
  const QDeadlineTimer drain(200);
  while (!drain.hasExpired()) QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
  EXPECT_EQ(viewModel.phase(), Phase::scanning);
  EXPECT_TRUE(viewModel.scanStatus().isEmpty());

  second->release();
  waitUntil([&] { return viewModel.phase() == Phase::results; });
  EXPECT_EQ(viewModel.scanResult()->root.path, "/second");
}

TEST_F(DiskAnalyzerViewModelTest, TreemapCellsFollowTheLayoutAndTakeColoursByPosition) {
  DiskAnalyzerScanResult result;
  std::vector<DirectoryNode> children;
  for (int i = 0; i < 11; ++i) children.push_back(node("/many/d" + std::to_string(i), 10));
  result.root = node("/many", 0, children);
  service->result = result;
  viewModel.scan(QStringLiteral("/many"), service, logger);
  waitUntil([&] { return viewModel.phase() == Phase::results; });

  EXPECT_TRUE(viewModel.treemapCells(0, 300).isEmpty());
  const QVariantList cells = viewModel.treemapCells(1100, 10);
  ASSERT_EQ(cells.size(), 11);
  EXPECT_EQ(cells[10].toMap()[QStringLiteral("color")], cells[0].toMap()[QStringLiteral("color")]);
  EXPECT_NE(cells[1].toMap()[QStringLiteral("color")], cells[0].toMap()[QStringLiteral("color")]);
  // Eleven equal cells in a strip 10 high: each 100 wide, drawn 1 point inside, too low for a label.
  const QVariantMap first = cells[0].toMap();
  EXPECT_DOUBLE_EQ(first[QStringLiteral("x")].toDouble(), 1.0);
  EXPECT_DOUBLE_EQ(first[QStringLiteral("width")].toDouble(), 98.0);
  EXPECT_DOUBLE_EQ(first[QStringLiteral("height")].toDouble(), 8.0);
  EXPECT_FALSE(first[QStringLiteral("showsLabel")].toBool());
  EXPECT_EQ(first[QStringLiteral("tooltip")].toString(), QStringLiteral("d0 — 10 B"));

  drillInto("/many/d0"); // a cell without sub-folders: pressing it changes nothing
  EXPECT_TRUE(viewModel.breadcrumb().empty());
}

TEST_F(DiskAnalyzerViewModelTest, RevealAsksTheFileManagerForTheEntrysPath) {
  scanSample();
  viewModel.revealInFileManager(QStringLiteral("file-1"), &logger);
  viewModel.revealInFileManager(QStringLiteral("no-such-entry"), &logger);
  waitUntil([&] { return !workspace->revealed().empty(); });
  EXPECT_EQ(workspace->revealed(), std::vector<std::string>{"/scan/Music/Albums/big.flac"});
  waitUntil([&] { return messages().back() == "Could not reveal /scan/Music/Albums/big.flac"; });
}

TEST_F(DiskAnalyzerViewModelTest, AChosenFolderIsScannedByItsLocalPathAndOtherLinksAreIgnored) {
  auto* handle = halcyra::app::ServiceHandle::wrap<DiskAnalyzerServiceProtocol>(service, &viewModel);
  viewModel.scanFolder(QUrl(QStringLiteral("https://example.com/folder")), handle, &logger);
  EXPECT_EQ(viewModel.phase(), Phase::idle);
  viewModel.scanFolder(QUrl::fromLocalFile(QStringLiteral("/data/My Photos")), handle, &logger);
  waitUntil([&] { return viewModel.phase() == Phase::results; });
  EXPECT_EQ(service->scannedPaths(), std::vector<std::string>{"/data/My Photos"});
}

TEST(DiskAnalyzerQuickTargets, LieInTheHomeEachWithABundledIcon) {
  DiskAnalyzerViewModel viewModel(nullptr, QStringLiteral("/home/sam"));
  const QVariantList targets = viewModel.folderTargets();
  ASSERT_FALSE(targets.isEmpty());
  for (const QVariant& target : targets) {
    EXPECT_TRUE(target.toMap()[QStringLiteral("path")].toString().startsWith(QStringLiteral("/home/sam")));
  }

  // The symbols come from here, not from a screen, so the screens' icon check does not see them.
  const std::string table = halcyra::testing::readFile(HALCYRA_SOURCE_DIR "/src/app/icons/symbols.tsv");
  for (const QVariant& target : targets) {
    const std::string symbol = target.toMap()[QStringLiteral("symbol")].toString().toStdString();
    EXPECT_NE(table.find("\n" + symbol + "\t"), std::string::npos) << symbol;
  }
}

/// Removal on a real folder: marked folders go to the Trash of a temporary home and the real
/// walk runs again.
class DiskAnalyzerRemovalTest : public DiskAnalyzerViewModelTest {
protected:
  std::shared_ptr<DiskAnalyzerServiceProtocol> walk = std::make_shared<halcyra::analyzer::NativeDiskAnalyzerService>();
  std::string root = home.mkdir("disk");

  void SetUp() override {
    home.file("disk/Old/a.bin", 40000);
    home.file("disk/Old/Inner/b.bin", 20000);
    home.file("disk/Keep/c.bin", 30000);
    home.file("disk/Keep Old/d.bin", 10000);
    viewModel.scan(QString::fromStdString(root), walk, logger);
    waitUntil([&] { return viewModel.phase() == Phase::results; });
  }

  std::vector<std::string> childPaths() const {
    std::vector<std::string> result;
    for (const auto& child : viewModel.scanResult()->root.children) result.push_back(child.path);
    std::sort(result.begin(), result.end());
    return result;
  }
};

TEST_F(DiskAnalyzerRemovalTest, MarkedFoldersGoToTheTrashAndTheRootIsScannedAgain) {
  drillInto(root + "/Old");
  toggle(root + "/Old/Inner");
  viewModel.navigateToRoot();
  toggle(root + "/Old");
  viewModel.requestDelete();
  ASSERT_TRUE(viewModel.isConfirmingDelete());
  drillInto(root + "/Old");
  const std::size_t logged = logger.entries().size();

  viewModel.confirmDelete(state, logger);
  EXPECT_FALSE(viewModel.isConfirmingDelete());
  EXPECT_TRUE(viewModel.selectedPaths().empty());
  EXPECT_EQ(viewModel.phase(), Phase::scanning);
  waitUntil([&] { return viewModel.phase() == Phase::results; });

  // The outer folder went first, whole; the inner one was gone by then, which is logged.
  EXPECT_FALSE(halcyra::testing::existsNoFollow(root + "/Old"));
  EXPECT_EQ(halcyra::testing::readFile(home / ".local/share/Trash/files/Old/Inner/b.bin").size(), 20000u);
  EXPECT_TRUE(std::filesystem::exists(home / ".local/share/Trash/info/Old.trashinfo"));
  EXPECT_EQ(childPaths(), (std::vector<std::string>{root + "/Keep", root + "/Keep Old"}));
  EXPECT_TRUE(viewModel.breadcrumb().empty());

  const auto log = messages();
  const std::vector<std::string> removal(log.begin() + static_cast<std::ptrdiff_t>(logged), log.begin() + static_cast<std::ptrdiff_t>(logged) + 3);
  EXPECT_EQ(removal[0], "Deleted: " + root + "/Old");
  EXPECT_EQ(removal[1].rfind("Failed to delete " + root + "/Old/Inner: ", 0), 0u) << removal[1];
  EXPECT_EQ(removal[2].rfind("Disk analyzer delete: 1 items removed, ", 0), 0u) << removal[2];
  EXPECT_EQ(log[logged + 3], "Disk analyzer scan started: " + root);
}

TEST_F(DiskAnalyzerRemovalTest, APathThatIsNoLongerAFolderIsLeftAlone) {
  toggle(root + "/Keep");
  toggle(root + "/Keep Old");
  // Since the scan, Keep has become a link to the other folder and "Keep Old" a file.
  std::filesystem::rename(root + "/Keep", home / "moved");
  home.symlink("disk/Keep", home / "moved");
  std::filesystem::remove_all(root + "/Keep Old");
  home.file("disk/Keep Old", 5);

  viewModel.confirmDelete(state, logger);
  waitUntil([&] { return viewModel.phase() == Phase::results; });
  EXPECT_TRUE(halcyra::testing::existsNoFollow(root + "/Keep"));
  EXPECT_EQ(halcyra::testing::readFile(home / "moved/c.bin").size(), 30000u);
  EXPECT_EQ(halcyra::testing::readFile(root + "/Keep Old").size(), 5u);
  EXPECT_FALSE(std::filesystem::exists(home / ".local/share/Trash/files"));
  const auto log = messages();
  EXPECT_NE(std::find(log.begin(), log.end(), "Failed to delete " + root + "/Keep: it is no longer a folder"), log.end());
  EXPECT_NE(std::find(log.begin(), log.end(), "Disk analyzer delete: 0 items removed, 0 KB freed"), log.end());
}
