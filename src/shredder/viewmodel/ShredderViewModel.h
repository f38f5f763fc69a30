#pragma once

#include <cstdint>
#include <deque>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <QList>
#include <QObject>
#include <QString>
#include <QUrl>

#include "app/AppState.h"
#include "app/DebugLogger.h"
#include "app/ServiceHandle.h"
#include "shredder/ShredResult.h"
#include "shredder/viewmodel/ShredderFilesModel.h"
#include "shredder/viewmodel/ShredderServiceProtocol.h"

namespace halcyra::shredder {

/// The secure shredder's flow: files dropped or picked, reviewed with their check marks and
/// the number of passes, confirmed, shredded, summed up. Lives on the interface thread; the
/// engine resolves and shreds on worker threads and reports back through queued calls that
/// are dropped once this object is gone. Screens route on `phase` alone.
///
/// The list survives leaving the tool: one instance lives as long as the window.
class ShredderViewModel : public QObject {
  Q_OBJECT
  Q_PROPERTY(QString phase READ phaseName NOTIFY phaseChanged)
  Q_PROPERTY(QString errorText READ errorText NOTIFY phaseChanged)
  Q_PROPERTY(QString destroyedText READ destroyedText NOTIFY phaseChanged)
  Q_PROPERTY(int filesShredded READ filesShredded NOTIFY phaseChanged)
  Q_PROPERTY(int resultPasses READ resultPasses NOTIFY phaseChanged)
  Q_PROPERTY(int passes READ passes WRITE setPasses NOTIFY passesChanged)
  Q_PROPERTY(QString progressMessage READ progressMessage NOTIFY progressChanged)
  Q_PROPERTY(double progressFraction READ progressFraction NOTIFY progressChanged)
  Q_PROPERTY(int fileCount READ fileCount NOTIFY filesChanged)
  Q_PROPERTY(int selectedCount READ selectedCount NOTIFY filesChanged)
  Q_PROPERTY(QString totalSizeText READ totalSizeText NOTIFY filesChanged)
  Q_PROPERTY(bool isResolving READ isResolving NOTIFY resolvingChanged)
  Q_PROPERTY(halcyra::shredder::ShredderFilesModel* filesModel READ filesModel CONSTANT)

public:
  enum class Phase { idle, preview, confirming, shredding, summary, error };

  explicit ShredderViewModel(QObject* parent = nullptr);
  ~ShredderViewModel() override;

  // State.
  Phase phase() const noexcept { return phase_; }
  QString phaseName() const;
  const std::vector<ShredderFile>& files() const noexcept { return filesModel_->files(); }
  const std::optional<ShredResult>& result() const noexcept { return result_; }
  QString errorText() const { return errorText_; }
  QString destroyedText() const;
  int filesShredded() const { return result_ ? result_->filesShredded : 0; }
  int resultPasses() const { return result_ ? result_->passes : 0; }
  int passes() const noexcept { return passes_; }
  /// Takes 1, 3 or 7; any other number is ignored.
  void setPasses(int passes);
  QString progressMessage() const { return progressMessage_; }
  double progressFraction() const noexcept { return progressFraction_; }
  int fileCount() const { return static_cast<int>(files().size()); }
  /// True while picked paths are still being turned into files on a worker thread.
  bool isResolving() const noexcept { return resolving_; }
  ShredderFilesModel* filesModel() const noexcept { return filesModel_; }

  // Derived from the check marks, computed on each use.
  std::int64_t totalSize() const;
  int selectedCount() const;
  QString totalSizeText() const;

  // Operations. Each takes what it works with, so nothing is wired at creation.
  /// Resolves the paths on a worker thread, then appends the files whose path is not listed
  /// yet and leaves `idle` for `preview` if anything is listed. Additions are taken one at a
  /// time, in the order they were asked for.
  void addFiles(std::vector<std::string> paths, std::shared_ptr<ShredderServiceProtocol> service);
  /// Shreds the selected files in list order and ends in `summary` (or `error`). Does nothing
  /// while a run is under way or when nothing is selected.
  void confirmShred(std::shared_ptr<ShredderServiceProtocol> service, app::DebugLogger& logger);
  /// The summary's "Done": `reset`, then the dashboard.
  void finish(app::AppState& appState);

  Q_INVOKABLE void toggleFile(const QString& id);
  /// Removes the row; an empty list is the idle screen again, whatever the phase was.
  Q_INVOKABLE void removeFile(const QString& id);
  /// Back to an empty idle screen; the passes stay, and additions still being resolved are
  /// dropped. A run cannot be interrupted, so during `shredding` this does nothing.
  Q_INVOKABLE void reset();
  /// "Shred Files": to `confirming` if at least one file is selected.
  Q_INVOKABLE void requestConfirmation();
  /// The confirmation was cancelled: back to the list, as it was.
  Q_INVOKABLE void cancelConfirmation();
  /// The error banner's retry: back to the list, which a run never changes.
  Q_INVOKABLE void retry();

  // The same operations as the screens call them: file URLs from the picker or a drop, and
  // the shared objects they hold. URLs that are not local files are passed over.
  Q_INVOKABLE void addFiles(const QList<QUrl>& urls, halcyra::app::ServiceHandle* service);
  Q_INVOKABLE void confirmShred(halcyra::app::ServiceHandle* service, halcyra::app::DebugLogger* logger);
  Q_INVOKABLE void finish(halcyra::app::AppState* appState);

signals:
  void phaseChanged();
  void passesChanged();
  void progressChanged();
  void filesChanged();
  void resolvingChanged();

private:
  struct PendingAddition {
    std::vector<std::string> paths;
    std::shared_ptr<ShredderServiceProtocol> service;
  };

  void setPhase(Phase phase);
  void setProgress(const QString& message, double fraction);
  void setResolving(bool resolving);
  void resolveNext();
  void appendResolved(std::vector<ShredderFile> resolved);
  static QString describe(std::exception_ptr error);

  Phase phase_ = Phase::idle;
  ShredderFilesModel* filesModel_;
  int passes_ = 3;
  QString progressMessage_;
  double progressFraction_ = 0;
  std::optional<ShredResult> result_;
  QString errorText_;
  std::deque<PendingAddition> pending_;
  bool resolving_ = false;
  /// Raised by `reset`: a resolution that started before it must not refill the list.
  std::uint64_t listGeneration_ = 0;
};

} // namespace halcyra::shredder
