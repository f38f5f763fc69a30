#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include <QDateTime>
#include <QObject>
#include <QString>
#include <QVariantList>

#include "app/AppState.h"
#include "app/DebugLogger.h"
#include "app/ServiceHandle.h"
#include "clean/CleanItem.h"
#include "clean/CleanServiceProtocol.h"
#include "clean/viewmodel/CleanItemsModel.h"
#include "platform/FullDiskAccessChecker.h"

namespace halcyra::clean {

/// The junk cleaner's flow: scan, review by section, confirm, clean, summary. Lives on the
/// interface thread; the scan and the clean run on worker threads and report back through
/// queued calls that are dropped once this object is gone. Screens route on `phase` alone.
class CleanViewModel : public QObject {
  Q_OBJECT
  Q_PROPERTY(QString phase READ phaseName NOTIFY phaseChanged)
  Q_PROPERTY(QString errorText READ errorText NOTIFY phaseChanged)
  Q_PROPERTY(QString freedText READ freedText NOTIFY phaseChanged)
  Q_PROPERTY(int itemsCleaned READ itemsCleaned NOTIFY phaseChanged)
  Q_PROPERTY(QString scanStatus READ scanStatus NOTIFY scanStatusChanged)
  Q_PROPERTY(QDateTime scanDate READ scanDate NOTIFY scanDateChanged)
  Q_PROPERTY(double progress READ progress NOTIFY progressChanged)
  Q_PROPERTY(int categoryCount READ categoryCount NOTIFY categoriesChanged)
  Q_PROPERTY(QString totalReclaimableText READ totalReclaimableText NOTIFY categoriesChanged)
  Q_PROPERTY(QString totalSelectedText READ totalSelectedText NOTIFY selectionChanged)
  Q_PROPERTY(int selectedItemCount READ selectedItemCount NOTIFY selectionChanged)
  Q_PROPERTY(QVariantList leftCards READ leftCards NOTIFY categoriesChanged)
  Q_PROPERTY(QVariantList rightCards READ rightCards NOTIFY categoriesChanged)
  Q_PROPERTY(QVariantList confirmSections READ confirmSections NOTIFY selectionChanged)
  Q_PROPERTY(halcyra::clean::CleanItemsModel* itemsModel READ itemsModel CONSTANT)

public:
  enum class Phase { idle, scanning, preview, confirming, executing, summary, error };

  /// `accessChecker` answers whether the scan can see everything; `hasAccessPermission` says
  /// whether this system has such a permission at all (macOS does; elsewhere nobody can grant
  /// it, so no banner asks for it).
  explicit CleanViewModel(platform::FullDiskAccessChecker accessChecker, bool hasAccessPermission,
                          QObject* parent = nullptr);
  ~CleanViewModel() override;

  // State.
  Phase phase() const noexcept { return phase_; }
  QString phaseName() const;
  const std::vector<CleanCategory>& categories() const noexcept { return categories_; }
  const std::optional<CleanResult>& result() const noexcept { return result_; }
  QString errorText() const { return errorText_; }
  QString freedText() const;
  int itemsCleaned() const { return result_ ? result_->itemsCleaned : 0; }
  QString scanStatus() const { return scanStatus_; }
  QDateTime scanDate() const { return scanDate_; }
  double progress() const noexcept { return progress_; }
  int categoryCount() const { return static_cast<int>(categories_.size()); }

  // Derived totals, computed on each use.
  /// Every item of the categories that are neither protected nor skipped, selected or not.
  std::int64_t totalReclaimableSize() const;
  std::int64_t totalSelectedSize() const;
  int selectedItemCount() const;
  QString totalReclaimableText() const;
  QString totalSelectedText() const;

  // Operations. Each takes what it works with, so nothing is wired at creation.
  void scan(std::shared_ptr<CleanServiceProtocol> service, app::DebugLogger& logger);
  void confirmClean(std::shared_ptr<CleanServiceProtocol> service, app::AppState& appState,
                    app::DebugLogger& logger);
  /// `reset`, then a new scan.
  void rescan(std::shared_ptr<CleanServiceProtocol> service, app::DebugLogger& logger);
  /// Starts the scan the dashboard or the tour asked for, if the cleaner is idle; the flag
  /// stays set in any other phase. True when a scan started.
  bool autoScanIfRequested(std::shared_ptr<CleanServiceProtocol> service, app::AppState& appState,
                           app::DebugLogger& logger);

  Q_INVOKABLE void selectAll();
  Q_INVOKABLE void deselectAll();
  Q_INVOKABLE void toggleCategory(const QString& id);
  Q_INVOKABLE void toggleItem(const QString& categoryId, const QString& itemId);
  Q_INVOKABLE void reset();

  /// "Clean All": select everything selectable, then ask for confirmation if anything is.
  Q_INVOKABLE void cleanAll();
  /// The review sheet's "Clean": keep the selection of this section only (a category counts as
  /// selected when any of its items is), clearing every other section.
  Q_INVOKABLE void keepOnlySection(const QString& section);
  /// The review sheet's "Select All": selects every category of the section that is not
  /// selected yet, so a partly selected one fills up.
  Q_INVOKABLE void selectAllInSection(const QString& section);
  /// The review sheet's "Deselect All": clears the section's selected categories. A partly
  /// selected category does not count as selected and keeps its items.
  Q_INVOKABLE void deselectAllInSection(const QString& section);
  /// To `confirming` if at least one item is selected.
  Q_INVOKABLE void requestConfirmation();
  /// The confirmation was cancelled: back to the preview, selection untouched.
  Q_INVOKABLE void cancelConfirmation();
  /// The summary's "Done": `reset`, then the dashboard.
  void finish(app::AppState& appState);

  // The same operations as the screens call them, with the shared objects they hold.
  Q_INVOKABLE void scan(halcyra::app::ServiceHandle* service, halcyra::app::DebugLogger* logger);
  Q_INVOKABLE void rescan(halcyra::app::ServiceHandle* service, halcyra::app::DebugLogger* logger);
  Q_INVOKABLE void confirmClean(halcyra::app::ServiceHandle* service, halcyra::app::AppState* appState,
                                halcyra::app::DebugLogger* logger);
  Q_INVOKABLE bool autoScanIfRequested(halcyra::app::ServiceHandle* service, halcyra::app::AppState* appState,
                                       halcyra::app::DebugLogger* logger);
  Q_INVOKABLE void finish(halcyra::app::AppState* appState);

  // What the preview and the review sheet show.
  QVariantList leftCards() const;
  QVariantList rightCards() const;
  /// Rows of the confirmation: sections with a selected item, in plain string order.
  QVariantList confirmSections() const;
  /// Reviewable categories of a section, largest first, each with id, name, icon, sizeText, isSelected.
  Q_INVOKABLE QVariantList reviewCategories(const QString& section) const;
  /// Skipped categories of a section, each with id, name, icon and reason.
  Q_INVOKABLE QVariantList skippedCategories(const QString& section) const;
  /// Selected items among a section's reviewable categories, and their size as text.
  Q_INVOKABLE int sectionSelectedCount(const QString& section) const;
  Q_INVOKABLE QString sectionSelectedSizeText(const QString& section) const;
  /// A category's name and skip reason for the items panel (empty map if unknown).
  Q_INVOKABLE QVariantMap categoryInfo(const QString& id) const;
  /// Whether the preview asks for Full Disk Access; read afresh on each call.
  Q_INVOKABLE bool needsAccessBanner() const;
  CleanItemsModel* itemsModel() const noexcept { return itemsModel_; }

  /// Where a finished clean's figures go (the statistics client); nothing by default. It is
  /// called after the summary shows and its outcome is not looked at.
  void setCleanReporter(std::function<void(const CleanResult&)> reporter) { cleanReporter_ = std::move(reporter); }

signals:
  void phaseChanged();
  void categoriesChanged();
  void selectionChanged();
  void scanStatusChanged();
  void scanDateChanged();
  void progressChanged();

private:
  void setPhase(Phase phase);
  void setScanStatus(const QString& status);
  void setCategories(std::vector<CleanCategory> categories);
  void notifySelection(const QString& categoryId = {}, int row = -1);
  QVariantList cards(bool left) const;
  std::vector<CleanCategory> sectionCategories(const QString& section) const;
  static QString describe(std::exception_ptr error);

  platform::FullDiskAccessChecker accessChecker_;
  bool hasAccessPermission_;
  Phase phase_ = Phase::idle;
  std::vector<CleanCategory> categories_;
  std::optional<CleanResult> result_;
  QString errorText_;
  double progress_ = 0;
  QString scanStatus_;
  QDateTime scanDate_;
  CleanItemsModel* itemsModel_;
  std::function<void(const CleanResult&)> cleanReporter_;
};

} // namespace halcyra::clean
