#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <QObject>
#include <QString>
#include <QUrl>
#include <QVariantList>

#include "app/AppState.h"
#include "app/DebugLogger.h"
#include "app/ServiceHandle.h"
#include "duplicates/DuplicateCleanResult.h"
#include "duplicates/DuplicateGroup.h"
#include "duplicates/SelectionStrategy.h"
#include "duplicates/viewmodel/DuplicateFilesModel.h"
#include "duplicates/viewmodel/DuplicateGroupsModel.h"
#include "duplicates/viewmodel/DuplicateServiceProtocol.h"
#include "platform/SystemPaths.h"

namespace halcyra::duplicates {

/// The duplicate finder's flow: pick a folder, scan, review groups, confirm, delete, summary.
/// Lives on the interface thread; the scan and the delete run on worker threads and report
/// back through queued calls that are dropped once this object is gone. Screens route on
/// `phase` alone.
///
/// Invariant: every group keeps at least one file unselected. The scan's default selection,
/// the strategies, "Select All" and the toggle rule all keep it, so no click can mark every
/// copy of a file for deletion.
class DuplicatesViewModel : public QObject {
  Q_OBJECT
  Q_PROPERTY(QString phase READ phaseName NOTIFY phaseChanged)
  Q_PROPERTY(QString errorText READ errorText NOTIFY phaseChanged)
  Q_PROPERTY(QString freedText READ freedText NOTIFY phaseChanged)
  Q_PROPERTY(int filesDeleted READ filesDeleted NOTIFY phaseChanged)
  Q_PROPERTY(QString scanStatus READ scanStatus NOTIFY scanStatusChanged)
  Q_PROPERTY(QString scanDirectory READ scanDirectoryText NOTIFY scanDirectoryChanged)
  Q_PROPERTY(bool noDuplicatesFound READ noDuplicatesFound NOTIFY noDuplicatesFoundChanged)
  Q_PROPERTY(int groupCount READ groupCount NOTIFY groupsChanged)
  Q_PROPERTY(QString totalWastedText READ totalWastedText NOTIFY selectionChanged)
  Q_PROPERTY(int totalSelectedCount READ totalSelectedCount NOTIFY selectionChanged)
  Q_PROPERTY(QVariantList folderTargets READ folderTargets CONSTANT)
  Q_PROPERTY(halcyra::duplicates::DuplicateGroupsModel* groupsModel READ groupsModel CONSTANT)
  Q_PROPERTY(halcyra::duplicates::DuplicateFilesModel* filesModel READ filesModel CONSTANT)

public:
  enum class Phase { idle, scanning, preview, confirming, executing, summary, error };

  /// The smallest file a scan from the window considers.
  static constexpr std::int64_t kMinFileSize = 4096;

  /// `paths` gives the home the quick-scan folders lie in.
  explicit DuplicatesViewModel(platform::SystemPaths paths, QObject* parent = nullptr);
  ~DuplicatesViewModel() override;

  // State.
  Phase phase() const noexcept { return phase_; }
  QString phaseName() const;
  const std::vector<DuplicateGroup>& groups() const noexcept { return groups_; }
  const std::optional<DuplicateCleanResult>& result() const noexcept { return result_; }
  QString errorText() const { return errorText_; }
  QString freedText() const;
  int filesDeleted() const { return result_ ? result_->filesDeleted : 0; }
  QString scanStatus() const { return scanStatus_; }
  const std::optional<std::string>& scanDirectory() const noexcept { return scanDirectory_; }
  QString scanDirectoryText() const;
  bool noDuplicatesFound() const noexcept { return noDuplicatesFound_; }
  int groupCount() const { return static_cast<int>(groups_.size()); }

  // Totals over all groups, following the selection.
  std::int64_t totalWastedSize() const;
  int totalSelectedCount() const;
  QString totalWastedText() const;

  /// The quick-scan folders: icon, label, path and file URL of the home, Music, Pictures,
  /// Downloads and Documents.
  QVariantList folderTargets() const;

  // Operations. Each takes what it works with, so nothing is wired at creation.
  void scan(const std::string& directory, std::shared_ptr<DuplicateServiceProtocol> service,
            app::DebugLogger& logger);
  /// Deletes the selected copies that are still as the scan saw them. `appState` is not
  /// touched: a delete run of this tool does not count as a clean.
  void confirmDelete(std::shared_ptr<DuplicateServiceProtocol> service, app::AppState& appState,
                     app::DebugLogger& logger);
  /// `reset`, then a new scan of the last folder; nothing when no folder was scanned yet.
  void rescan(std::shared_ptr<DuplicateServiceProtocol> service, app::DebugLogger& logger);
  void applyStrategy(SelectionStrategy strategy);

  Q_INVOKABLE void reset();
  /// Marks every copy of the group but the oldest, which is unmarked.
  Q_INVOKABLE void selectAllInGroup(const QString& groupId);
  Q_INVOKABLE void deselectAllInGroup(const QString& groupId);
  /// Flips one file's mark, except that the last unmarked file of a group stays unmarked.
  Q_INVOKABLE void toggleFile(const QString& groupId, const QString& fileId);
  /// "keepOldest" or "keepNewest"; any other name does nothing.
  Q_INVOKABLE void applyStrategy(const QString& strategy);
  /// "Delete Selected": to `confirming` if at least one file is marked.
  Q_INVOKABLE void requestConfirmation();
  /// The confirmation was cancelled: back to the result, selection untouched.
  Q_INVOKABLE void cancelConfirmation();
  /// The summary's "Done": `reset`, then the dashboard.
  void finish(app::AppState& appState);

  // The same operations as the screens call them, with the shared objects they hold.
  Q_INVOKABLE void scan(const QString& directory, halcyra::app::ServiceHandle* service,
                        halcyra::app::DebugLogger* logger);
  /// A folder picked in the folder dialog.
  Q_INVOKABLE void scanFolder(const QUrl& folder, halcyra::app::ServiceHandle* service,
                              halcyra::app::DebugLogger* logger);
  Q_INVOKABLE void rescan(halcyra::app::ServiceHandle* service, halcyra::app::DebugLogger* logger);
  Q_INVOKABLE void confirmDelete(halcyra::app::ServiceHandle* service, halcyra::app::AppState* appState,
                                 halcyra::app::DebugLogger* logger);
  Q_INVOKABLE void finish(halcyra::app::AppState* appState);

  /// The group the detail panel shows: the one picked in the list, else the first group,
  /// else none (empty). Taken from all groups, whatever the search shows.
  Q_INVOKABLE QString activeGroupId(const QString& selectedGroupId) const;
  /// The symbol of a file's row, by its extension.
  Q_INVOKABLE static QString fileIcon(const QString& path);

  DuplicateGroupsModel* groupsModel() const noexcept { return groupsModel_; }
  DuplicateFilesModel* filesModel() const noexcept { return filesModel_; }

signals:
  void phaseChanged();
  void groupsChanged();
  void selectionChanged();
  void scanStatusChanged();
  void scanDirectoryChanged();
  void noDuplicatesFoundChanged();

private:
  void setPhase(Phase phase);
  void setScanStatus(const QString& status);
  void setGroups(std::vector<DuplicateGroup> groups);
  void setNoDuplicatesFound(bool value);
  void notifySelection(const QString& groupId = {});
  DuplicateGroup* findGroup(const QString& groupId);
  static QString describe(std::exception_ptr error);

  platform::SystemPaths paths_;
  Phase phase_ = Phase::idle;
  std::vector<DuplicateGroup> groups_;
  std::optional<DuplicateCleanResult> result_;
  QString errorText_;
  QString scanStatus_;
  std::optional<std::string> scanDirectory_;
  bool noDuplicatesFound_ = false;
  DuplicateGroupsModel* groupsModel_;
  DuplicateFilesModel* filesModel_;
};

} // namespace halcyra::duplicates
