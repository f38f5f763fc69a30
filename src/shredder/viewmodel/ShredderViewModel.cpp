#include "shredder/viewmodel/ShredderViewModel.h"

#include <algorithm>
#include <mutex>
#include <unordered_set>

#include <QFile>
#include <QPointer>

#include "app/BackgroundTask.h"
#include "core/ByteFormatter.h"
#include "core/CleanError.h"

namespace halcyra::shredder {
namespace {

using Level = core::LogEntry::LogLevel;
using Source = core::LogEntry::LogSource;

QString formatBytes(std::int64_t bytes) { return QString::fromStdString(core::ByteFormatter::format(bytes)); }

/// The newest progress report of a run, handed from the worker to the interface thread. The
/// engine reports once per MiB written; only one delivery is queued at a time and it shows
/// whatever is newest when it runs, so a fast disk cannot flood the event queue, and the last
/// report ("Complete") is always the one that stays.
struct ProgressMailbox {
  std::mutex mutex;
  std::string text;
  double fraction = 0;
  bool queued = false;
};

} // namespace

ShredderViewModel::ShredderViewModel(QObject* parent)
    : QObject(parent), filesModel_(new ShredderFilesModel(this)) {}

ShredderViewModel::~ShredderViewModel() = default;

QString ShredderViewModel::phaseName() const {
  switch (phase_) {
  case Phase::idle: return QStringLiteral("idle");
  case Phase::preview: return QStringLiteral("preview");
  case Phase::confirming: return QStringLiteral("confirming");
  case Phase::shredding: return QStringLiteral("shredding");
  case Phase::summary: return QStringLiteral("summary");
  case Phase::error: return QStringLiteral("error");
  }
  return {};
}

QString ShredderViewModel::destroyedText() const { return formatBytes(result_ ? result_->totalBytes : 0); }

void ShredderViewModel::setPasses(int passes) {
  if (passes != 1 && passes != 3 && passes != 7) return;
  if (passes == passes_) return;
  passes_ = passes;
  emit passesChanged();
}

std::int64_t ShredderViewModel::totalSize() const {
  std::int64_t total = 0;
  for (const auto& file : files()) {
    if (file.isSelected) total += file.size;
  }
  return total;
}

int ShredderViewModel::selectedCount() const {
  return static_cast<int>(std::count_if(files().begin(), files().end(), [](const auto& f) { return f.isSelected; }));
}

QString ShredderViewModel::totalSizeText() const { return formatBytes(totalSize()); }

void ShredderViewModel::setPhase(Phase phase) {
  // Payload phases always notify: a new result or error text is a change even in the same phase.
  phase_ = phase;
  emit phaseChanged();
}

void ShredderViewModel::setProgress(const QString& message, double fraction) {
  progressMessage_ = message;
  progressFraction_ = fraction;
  emit progressChanged();
}

void ShredderViewModel::setResolving(bool resolving) {
  if (resolving == resolving_) return;
  resolving_ = resolving;
  emit resolvingChanged();
}

QString ShredderViewModel::describe(std::exception_ptr error) {
  try {
    std::rethrow_exception(error);
  } catch (const std::exception& e) {
    return QString::fromStdString(core::describeError(e));
  } catch (...) {
    return QString::fromStdString(core::CleanError::descriptionOf(core::CleanError::Kind::unknown));
  }
}

void ShredderViewModel::addFiles(std::vector<std::string> paths, std::shared_ptr<ShredderServiceProtocol> service) {
  if (!service || paths.empty()) return;
  pending_.push_back({std::move(paths), std::move(service)});
  if (!resolving_) resolveNext();
}

void ShredderViewModel::resolveNext() {
  if (pending_.empty()) {
    setResolving(false);
    return;
  }
  PendingAddition next = std::move(pending_.front());
  pending_.pop_front();
  setResolving(true);

  // A large folder takes a while to walk: the walk runs on a worker so the window stays
  // responsive, and the list is only touched here, on the interface thread, once it is done.
  const std::uint64_t generation = listGeneration_;
  app::runInBackground<std::vector<ShredderFile>>(
      this,
      [paths = std::move(next.paths), service = std::move(next.service)] {
        // Refused inputs (links, special files, paths that are gone) are skipped without a
        // word, like anything else that cannot be shredded.
        std::vector<ShredderRefusal> refused;
        return service->resolveFiles(paths, refused);
      },
      [this, generation](std::vector<ShredderFile> resolved) {
        if (generation != listGeneration_) return;
        appendResolved(std::move(resolved));
        resolveNext();
      },
      [this, generation](std::exception_ptr) {
        if (generation != listGeneration_) return;
        resolveNext();
      });
}

void ShredderViewModel::appendResolved(std::vector<ShredderFile> resolved) {
  // Compared with the list as it was before this addition only: a path named twice within
  // one addition stays twice, as the engine gave it.
  std::unordered_set<std::string> listed;
  for (const auto& file : files()) listed.insert(file.path);
  std::vector<ShredderFile> kept;
  for (auto& file : resolved) {
    if (!listed.contains(file.path)) kept.push_back(std::move(file));
  }
  if (!kept.empty()) {
    filesModel_->append(std::move(kept));
    emit filesChanged();
  }
  if (!files().empty() && phase_ == Phase::idle) setPhase(Phase::preview);
}

void ShredderViewModel::toggleFile(const QString& id) {
  if (filesModel_->toggle(id.toStdString())) emit filesChanged();
}

void ShredderViewModel::removeFile(const QString& id) {
  if (!filesModel_->remove(id.toStdString())) return;
  emit filesChanged();
  if (files().empty()) setPhase(Phase::idle);
}

void ShredderViewModel::reset() {
  if (phase_ == Phase::shredding) return;
  ++listGeneration_;
  pending_.clear();
  setResolving(false);
  filesModel_->clear();
  emit filesChanged();
  setProgress({}, 0);
  setPhase(Phase::idle);
}

void ShredderViewModel::requestConfirmation() {
  if (phase_ == Phase::preview && selectedCount() >= 1) setPhase(Phase::confirming);
}

void ShredderViewModel::cancelConfirmation() {
  if (phase_ == Phase::confirming) setPhase(Phase::preview);
}

void ShredderViewModel::retry() {
  if (phase_ == Phase::error) setPhase(files().empty() ? Phase::idle : Phase::preview);
}

void ShredderViewModel::confirmShred(std::shared_ptr<ShredderServiceProtocol> service, app::DebugLogger& logger) {
  // A second press of "Shred Now" before the sheet has gone must not start a second run.
  if (!service || phase_ == Phase::shredding || selectedCount() < 1) return;
  setPhase(Phase::shredding);
  setProgress({}, 0);

  std::vector<ShredderFile> selected;
  for (const auto& file : files()) {
    if (file.isSelected) selected.push_back(file);
  }
  const int passes = passes_;
  logger.log(QStringLiteral("Shredder started: %1 files, %2, %3 passes")
                 .arg(selected.size())
                 .arg(totalSizeText())
                 .arg(passes),
             Level::info, Source::shredder);

  QPointer<QObject> guard(this);
  auto mailbox = std::make_shared<ProgressMailbox>();
  ShredderServiceProtocol::ProgressCallback onProgress = [guard, mailbox, this](const std::string& text,
                                                                                double fraction) {
    std::lock_guard lock(mailbox->mutex);
    mailbox->text = text;
    mailbox->fraction = fraction;
    if (mailbox->queued) return;
    mailbox->queued = true;
    // `this` is only used inside the delivery, which runs only while the guard holds.
    app::postToInterface(guard, [this, mailbox] {
      QString message;
      double latest = 0;
      {
        std::lock_guard inner(mailbox->mutex);
        message = QString::fromStdString(mailbox->text);
        latest = mailbox->fraction;
        mailbox->queued = false;
      }
      if (phase_ == Phase::shredding) setProgress(message, latest);
    });
  };

  struct Outcome {
    ShredResult result;
    std::vector<ShredderRefusal> refused;
  };
  QPointer<app::DebugLogger> log(&logger);
  app::runInBackground<Outcome>(
      this,
      [service, selected = std::move(selected), passes, onProgress] {
        Outcome outcome;
        outcome.result = service->shredFiles(selected, passes, onProgress, outcome.refused);
        return outcome;
      },
      [this, log](Outcome outcome) {
        if (log) {
          // Files changed behind the list's back (a link or a FIFO swapped in) are left alone;
          // the log says which and why.
          for (const auto& refusal : outcome.refused) {
            log->log(QStringLiteral("Shredder skipped %1: %2")
                         .arg(QString::fromStdString(refusal.path), QString::fromStdString(refusal.reason)),
                     Level::warn, Source::shredder);
          }
          log->log(QStringLiteral("Shredder complete: %1 files, %2 destroyed in %3s")
                       .arg(outcome.result.filesShredded)
                       .arg(formatBytes(outcome.result.totalBytes))
                       .arg(QString::number(outcome.result.duration, 'f', 1)),
                   Level::info, Source::shredder);
        }
        result_ = outcome.result;
        setPhase(Phase::summary);
      },
      [this, log](std::exception_ptr error) {
        errorText_ = describe(error);
        if (log) log->log(QStringLiteral("Shredder error: ") + errorText_, Level::error, Source::shredder);
        setPhase(Phase::error);
      });
}

void ShredderViewModel::finish(app::AppState& appState) {
  reset();
  appState.setSelectedNavItem(app::NavigationItem::dashboard);
}

void ShredderViewModel::addFiles(const QList<QUrl>& urls, app::ServiceHandle* service) {
  auto engine = service ? service->get<ShredderServiceProtocol>() : nullptr;
  if (!engine) return;
  std::vector<std::string> paths;
  for (const QUrl& url : urls) {
    if (!url.isLocalFile()) continue;
    // File names are bytes: encodeName gives back the bytes the name had on disk.
    const QByteArray path = QFile::encodeName(url.toLocalFile());
    if (!path.isEmpty()) paths.emplace_back(path.constData(), static_cast<std::size_t>(path.size()));
  }
  addFiles(std::move(paths), std::move(engine));
}

void ShredderViewModel::confirmShred(app::ServiceHandle* service, app::DebugLogger* logger) {
  auto engine = service ? service->get<ShredderServiceProtocol>() : nullptr;
  if (engine && logger) confirmShred(std::move(engine), *logger);
}

void ShredderViewModel::finish(app::AppState* appState) {
  if (appState) finish(*appState);
}

} // namespace halcyra::shredder
