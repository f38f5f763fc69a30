#pragma once

#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <QObject>
#include <QString>
#include <QUrl>
#include <QVariantList>
#include <QVariantMap>

#include "analyzer/DiskAnalyzerScanResult.h"
#include "analyzer/viewmodel/DirectoryRowsModel.h"
#include "analyzer/viewmodel/DiskAnalyzerServiceProtocol.h"
#include "app/AppState.h"
#include "app/DebugLogger.h"
#include "app/ServiceHandle.h"
#include "platform/Workspace.h"

namespace halcyra::analyzer {

/// The disk analyzer's flow: scan a folder, walk up and down its size tree, mark folders and
/// move them to the Trash. Lives on the interface thread for the life of the window, so a
/// finished scan is still there when the user comes back; the walk runs on a worker thread and
/// reports through queued calls that are dropped once this object is gone. Screens route on
/// `phase` alone.
///
/// The tree is never edited: the breadcrumb and the rows point into the last scan result, and
/// a removal is followed by a new scan that replaces it.
class DiskAnalyzerViewModel : public QObject {
  Q_OBJECT
  Q_PROPERTY(QString phase READ phaseName NOTIFY phaseChanged)
  Q_PROPERTY(QString errorText READ errorText NOTIFY phaseChanged)
  Q_PROPERTY(QString scanStatus READ scanStatus NOTIFY scanStatusChanged)
  Q_PROPERTY(bool hasResult READ hasResult NOTIFY resultChanged)
  Q_PROPERTY(QString totalSizeText READ totalSizeText NOTIFY resultChanged)
  Q_PROPERTY(qint64 fileCount READ fileCount NOTIFY resultChanged)
  Q_PROPERTY(qint64 directoryCount READ directoryCount NOTIFY resultChanged)
  Q_PROPERTY(QString rootName READ rootName NOTIFY resultChanged)
  Q_PROPERTY(QVariantList largestFiles READ largestFiles NOTIFY resultChanged)
  Q_PROPERTY(QVariantList breadcrumb READ breadcrumbEntries NOTIFY displayChanged)
  Q_PROPERTY(int displayRevision READ displayRevision NOTIFY displayChanged)
  Q_PROPERTY(int displayCount READ displayCount NOTIFY displayChanged)
  Q_PROPERTY(halcyra::analyzer::DirectoryRowsModel* rows READ rows CONSTANT)
  Q_PROPERTY(QString selectedTab READ selectedTab WRITE setSelectedTab NOTIFY selectedTabChanged)
  Q_PROPERTY(QStringList tabs READ tabs CONSTANT)
  Q_PROPERTY(int selectedCount READ selectedCount NOTIFY selectionChanged)
  Q_PROPERTY(QString selectedSizeText READ selectedSizeText NOTIFY selectionChanged)
  Q_PROPERTY(bool isConfirmingDelete READ isConfirmingDelete NOTIFY isConfirmingDeleteChanged)
  Q_PROPERTY(QVariantList folderTargets READ folderTargets CONSTANT)
  Q_PROPERTY(QVariantMap treemapStyle READ treemapStyle CONSTANT)

public:
  enum class Phase { idle, scanning, results, error };
  enum class ResultTab { treemap, largestFiles };
  enum class SortOrder { sizeDescending, nameAscending };

  /// `workspace` moves removed folders to the Trash and reveals files in the file manager;
  /// `home` is the user's home folder, behind the quick targets and a rescan without a result.
  DiskAnalyzerViewModel(std::shared_ptr<platform::Workspace> workspace, QString home, QObject* parent = nullptr);
  ~DiskAnalyzerViewModel() override;

  // State.
  Phase phase() const noexcept { return phase_; }
  QString phaseName() const;
  QString errorText() const { return errorText_; }
  QString scanStatus() const { return scanStatus_; }
  const std::optional<DiskAnalyzerScanResult>& scanResult() const noexcept { return scanResult_; }
  bool hasResult() const noexcept { return scanResult_.has_value(); }
  /// The folders walked down from the root, the root itself not included.
  const std::vector<const DirectoryNode*>& breadcrumb() const noexcept { return breadcrumb_; }
  SortOrder sortOrder() const noexcept { return sortOrder_; }
  /// No screen offers a change of the order; the size order is the one that makes good rows.
  void setSortOrder(SortOrder order);
  ResultTab resultTab() const noexcept { return selectedTab_; }
  const std::set<std::string>& selectedPaths() const noexcept { return selectedPaths_; }
  bool isConfirmingDelete() const noexcept { return isConfirmingDelete_; }

  // Derived values.
  /// The last breadcrumb entry, else the root; none without a result.
  const DirectoryNode* currentNode() const;
  /// The children of the current node in the sort order: all of them, however small.
  std::vector<const DirectoryNode*> displayChildren() const;
  /// The sizes of the marked folders as the tree knows them, a folder inside another one
  /// counted again; a path the tree does not hold counts 0.
  std::int64_t selectedSize() const;

  // Operations. Each takes what it works with, so nothing is wired at creation.
  void scan(const QString& directory, std::shared_ptr<DiskAnalyzerServiceProtocol> service, app::DebugLogger& logger);
  /// The results' "Rescan": the root of the last scan, or the home without one, scanned anew
  /// after `reset`.
  void rescan(std::shared_ptr<DiskAnalyzerServiceProtocol> service, app::DebugLogger& logger);
  /// Moves every marked path to the Trash, one after the other, logs each outcome and the
  /// total, clears the marks and scans the root again. One failure never stops the others.
  void confirmDelete(app::AppState& appState, app::DebugLogger& logger);

  /// One level down, into the shown child with this id if it has children of its own;
  /// anything else does nothing. Screens name nodes by id: paths are bytes, which a text may
  /// not carry unchanged.
  Q_INVOKABLE void drillInto(const QString& nodeId);
  Q_INVOKABLE void navigateToRoot();
  /// Keeps the breadcrumb up to and including `index`; an index past its end does nothing.
  Q_INVOKABLE void navigateToBreadcrumb(int index);
  /// Marks the path for removal, or unmarks it if it was marked.
  void toggleSelectionOfPath(const std::string& path);
  /// The same for the shown child with this id.
  Q_INVOKABLE void toggleSelection(const QString& nodeId);
  Q_INVOKABLE bool isSelected(const QString& nodeId) const;
  Q_INVOKABLE void deselectAll();
  /// Opens the confirmation if anything is marked.
  Q_INVOKABLE void requestDelete();
  Q_INVOKABLE void cancelDelete();
  /// Back to the start: no result, no marks, no breadcrumb. The tab and the order stay.
  Q_INVOKABLE void reset();
  /// Shows the file of the largest-files entry with this id in the file manager, on a worker
  /// thread since the platform's helper may take a moment; a failure is logged.
  Q_INVOKABLE void revealInFileManager(const QString& fileId, halcyra::app::DebugLogger* logger);

  /// The treemap of the shown children in a view of `width` × `height`: one map per cell, in
  /// display order, with the drawn box, its colour, label decisions, texts and the child's path.
  Q_INVOKABLE QVariantList treemapCells(double width, double height) const;

  // The same operations as the screens call them, with the shared objects they hold.
  Q_INVOKABLE void scan(const QString& directory, halcyra::app::ServiceHandle* service,
                        halcyra::app::DebugLogger* logger);
  /// The folder of the "Choose Folder" dialog, which names it as a link.
  Q_INVOKABLE void scanFolder(const QUrl& folder, halcyra::app::ServiceHandle* service,
                              halcyra::app::DebugLogger* logger);
  Q_INVOKABLE void rescan(halcyra::app::ServiceHandle* service, halcyra::app::DebugLogger* logger);
  Q_INVOKABLE void confirmDelete(halcyra::app::AppState* appState, halcyra::app::DebugLogger* logger);

  // What the screens show.
  QString totalSizeText() const;
  qint64 fileCount() const { return scanResult_ ? scanResult_->fileCount : 0; }
  qint64 directoryCount() const { return scanResult_ ? scanResult_->directoryCount : 0; }
  /// The root's name, or "Root" without a result.
  QString rootName() const;
  QVariantList largestFiles() const;
  /// Each entry with its `name` and its `index`.
  QVariantList breadcrumbEntries() const;
  int displayRevision() const noexcept { return displayRevision_; }
  int displayCount() const;
  DirectoryRowsModel* rows() const noexcept { return rows_; }
  /// "Treemap" or "Largest Files".
  QString selectedTab() const;
  void setSelectedTab(const QString& tab);
  QStringList tabs() const;
  int selectedCount() const { return static_cast<int>(selectedPaths_.size()); }
  QString selectedSizeText() const;
  /// Label, symbol and path of each quick target.
  QVariantList folderTargets() const;
  QVariantMap treemapStyle() const;

signals:
  void phaseChanged();
  void scanStatusChanged();
  void resultChanged();
  void displayChanged();
  void selectedTabChanged();
  void selectionChanged();
  void isConfirmingDeleteChanged();

private:
  void setPhase(Phase phase);
  void setScanStatus(const QString& status);
  void setConfirmingDelete(bool confirming);
  void setResult(std::optional<DiskAnalyzerScanResult> result);
  void displayHasChanged();
  static QString describe(std::exception_ptr error);

  std::shared_ptr<platform::Workspace> workspace_;
  QString home_;
  Phase phase_ = Phase::idle;
  QString errorText_;
  QString scanStatus_;
  std::optional<DiskAnalyzerScanResult> scanResult_;
  std::vector<const DirectoryNode*> breadcrumb_;
  SortOrder sortOrder_ = SortOrder::sizeDescending;
  ResultTab selectedTab_ = ResultTab::treemap;
  std::set<std::string> selectedPaths_;
  bool isConfirmingDelete_ = false;
  int displayRevision_ = 0;
  /// Counts scans, so that the result of one that was overtaken by a newer one is dropped.
  int scanGeneration_ = 0;
  /// The walk behind the last scan, which a removal's rescan uses again (walks keep no state).
  std::shared_ptr<DiskAnalyzerServiceProtocol> lastService_;
  DirectoryRowsModel* rows_;
};

} // namespace halcyra::analyzer
