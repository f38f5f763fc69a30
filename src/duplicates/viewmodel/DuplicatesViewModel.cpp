#include "duplicates/viewmodel/DuplicatesViewModel.h"

#include <algorithm>
#include <numeric>

#include <QFile>
#include <QVariantMap>

#include "app/BackgroundTask.h"
#include "core/ByteFormatter.h"
#include "core/CleanError.h"
#include "duplicates/viewmodel/FileIcons.h"

namespace halcyra::duplicates {
namespace {

using Level = core::LogEntry::LogLevel;
using Source = core::LogEntry::LogSource;

QString formatBytes(std::int64_t bytes) { return QString::fromStdString(core::ByteFormatter::format(bytes)); }

/// A file path as text for the log and the screens. Names need not be UTF-8; they show as the
/// file system's encoding reads them.
QString pathText(const std::string& path) { return QFile::decodeName(QByteArray::fromStdString(path)); }

} // namespace

DuplicatesViewModel::DuplicatesViewModel(platform::SystemPaths paths, QObject* parent)
    : QObject(parent), paths_(std::move(paths)), groupsModel_(new DuplicateGroupsModel(groups_, this)),
      filesModel_(new DuplicateFilesModel(groups_, this)) {}

DuplicatesViewModel::~DuplicatesViewModel() = default;

QString DuplicatesViewModel::phaseName() const {
  switch (phase_) {
  case Phase::idle: return QStringLiteral("idle");
  case Phase::scanning: return QStringLiteral("scanning");
  case Phase::preview: return QStringLiteral("preview");
  case Phase::confirming: return QStringLiteral("confirming");
  case Phase::executing: return QStringLiteral("executing");
  case Phase::summary: return QStringLiteral("summary");
  case Phase::error: return QStringLiteral("error");
  }
  return {};
}

QString DuplicatesViewModel::freedText() const { return formatBytes(result_ ? result_->freedBytes : 0); }

QString DuplicatesViewModel::scanDirectoryText() const {
  return scanDirectory_ ? pathText(*scanDirectory_) : QString();
}

std::int64_t DuplicatesViewModel::totalWastedSize() const {
  return std::accumulate(groups_.begin(), groups_.end(), std::int64_t{0},
                         [](std::int64_t sum, const DuplicateGroup& group) { return sum + group.totalWastedSize(); });
}

int DuplicatesViewModel::totalSelectedCount() const {
  return std::accumulate(groups_.begin(), groups_.end(), 0,
                         [](int sum, const DuplicateGroup& group) { return sum + group.selectedCount(); });
}

QString DuplicatesViewModel::totalWastedText() const { return formatBytes(totalWastedSize()); }

QVariantList DuplicatesViewModel::folderTargets() const {
  const auto target = [](const char* icon, const QString& label, const std::string& path) {
    return QVariantMap{{QStringLiteral("icon"), QString::fromLatin1(icon)},
                       {QStringLiteral("label"), label},
                       {QStringLiteral("path"), pathText(path)},
                       {QStringLiteral("url"), QUrl::fromLocalFile(pathText(path))}};
  };
  return {target("house.fill", tr("Home"), paths_.home()), target("music.note", tr("Music"), paths_.inHome("Music")),
          target("photo.on.rectangle", tr("Pictures"), paths_.inHome("Pictures")),
          target("arrow.down.circle", tr("Downloads"), paths_.inHome("Downloads")),
          target("doc.text", tr("Documents"), paths_.inHome("Documents"))};
}

void DuplicatesViewModel::setPhase(Phase phase) {
  // Payload phases always notify: a new error text or result is a change even in the same phase.
  phase_ = phase;
  emit phaseChanged();
}

void DuplicatesViewModel::setScanStatus(const QString& status) {
  if (status == scanStatus_) return;
  scanStatus_ = status;
  emit scanStatusChanged();
}

void DuplicatesViewModel::setGroups(std::vector<DuplicateGroup> groups) {
  groups_ = std::move(groups);
  groupsModel_->reload();
  filesModel_->reload();
  emit groupsChanged();
  emit selectionChanged();
}

void DuplicatesViewModel::setNoDuplicatesFound(bool value) {
  if (value == noDuplicatesFound_) return;
  noDuplicatesFound_ = value;
  emit noDuplicatesFoundChanged();
}

void DuplicatesViewModel::notifySelection(const QString& groupId) {
  groupsModel_->selectionChanged(groupId);
  filesModel_->selectionChanged(groupId);
  emit selectionChanged();
}

DuplicateGroup* DuplicatesViewModel::findGroup(const QString& groupId) {
  const std::string key = groupId.toStdString();
  const auto found = std::find_if(groups_.begin(), groups_.end(), [&](const auto& group) { return group.id == key; });
  return found == groups_.end() ? nullptr : &*found;
}

QString DuplicatesViewModel::describe(std::exception_ptr error) {
  try {
    std::rethrow_exception(error);
  } catch (const std::exception& e) {
    return QString::fromStdString(core::describeError(e));
  } catch (...) {
    return QString::fromStdString(core::CleanError::descriptionOf(core::CleanError::Kind::unknown));
  }
}

void DuplicatesViewModel::scan(const std::string& directory, std::shared_ptr<DuplicateServiceProtocol> service,
                               app::DebugLogger& logger) {
  setPhase(Phase::scanning);
  setGroups({});
  setScanStatus({});
  scanDirectory_ = directory;
  emit scanDirectoryChanged();
  logger.log(QStringLiteral("Duplicate scan started: ") + pathText(directory), Level::info, Source::duplicates);

  QPointer<app::DebugLogger> log(&logger);
  auto onProgress = app::statusRelay(this, [this](const QString& status) { setScanStatus(status); });
  app::runInBackground<std::vector<DuplicateGroup>>(
      this, [service, directory, onProgress] { return service->scan(directory, kMinFileSize, onProgress); },
      [this, log](std::vector<DuplicateGroup> found) {
        setGroups(std::move(found));
        if (log) {
          std::size_t fileCount = 0;
          for (const auto& group : groups_) fileCount += group.files.size();
          log->log(QStringLiteral("Duplicate scan complete: %1 groups, %2 files, %3 reclaimable")
                       .arg(groups_.size())
                       .arg(fileCount)
                       .arg(totalWastedText()),
                   Level::info, Source::duplicates);
        }
        setScanStatus({});
        setNoDuplicatesFound(groups_.empty());
        setPhase(groups_.empty() ? Phase::idle : Phase::preview);
      },
      [this, log](std::exception_ptr error) {
        errorText_ = describe(error);
        if (log) log->log(QStringLiteral("Duplicate scan error: ") + errorText_, Level::error, Source::duplicates);
        setScanStatus({});
        setPhase(Phase::error);
      });
}

void DuplicatesViewModel::confirmDelete(std::shared_ptr<DuplicateServiceProtocol> service, app::AppState& appState,
                                        app::DebugLogger& logger) {
  Q_UNUSED(appState);
  setPhase(Phase::executing);
  setScanStatus({});
  logger.log(QStringLiteral("Duplicate cleanup started: %1 files, %2 selected")
                 .arg(totalSelectedCount())
                 .arg(totalWastedText()),
             Level::info, Source::duplicates);

  // The engine looks at every file afresh on the worker, right before the deletion it guards.
  QPointer<app::DebugLogger> log(&logger);
  auto onProgress = app::statusRelay(this, [this](const QString& status) { setScanStatus(status); });
  app::runInBackground<DuplicateCleanResult>(
      this, [service, groups = groups_, onProgress] { return service->deleteFiles(groups, onProgress); },
      [this, log](DuplicateCleanResult result) {
        if (log) {
          for (const auto& copy : result.failedFiles) {
            log->log(QStringLiteral("Duplicate cleanup skipped %1: %2")
                         .arg(pathText(copy.path), QString::fromStdString(copy.error)),
                     Level::warn, Source::duplicates);
          }
          log->log(QStringLiteral("Duplicate cleanup complete: freed %1, %2 files in %3s")
                       .arg(formatBytes(result.freedBytes))
                       .arg(result.filesDeleted)
                       .arg(QString::number(result.duration, 'f', 1)),
                   Level::info, Source::duplicates);
        }
        result_ = result;
        setPhase(Phase::summary);
      },
      [this, log](std::exception_ptr error) {
        errorText_ = describe(error);
        if (log) log->log(QStringLiteral("Duplicate cleanup error: ") + errorText_, Level::error, Source::duplicates);
        setPhase(Phase::error);
      });
}

void DuplicatesViewModel::rescan(std::shared_ptr<DuplicateServiceProtocol> service, app::DebugLogger& logger) {
  if (!scanDirectory_) return;
  const std::string directory = *scanDirectory_;
  reset();
  scan(directory, std::move(service), logger);
}

void DuplicatesViewModel::reset() {
  setPhase(Phase::idle);
  setGroups({});
  setScanStatus({});
  scanDirectory_.reset();
  emit scanDirectoryChanged();
  setNoDuplicatesFound(false);
}

void DuplicatesViewModel::applyStrategy(SelectionStrategy strategy) {
  duplicates::applyStrategy(groups_, strategy);
  notifySelection();
}

void DuplicatesViewModel::applyStrategy(const QString& strategy) {
  if (strategy == QLatin1String("keepOldest")) applyStrategy(SelectionStrategy::keepOldest);
  else if (strategy == QLatin1String("keepNewest")) applyStrategy(SelectionStrategy::keepNewest);
}

void DuplicatesViewModel::selectAllInGroup(const QString& groupId) {
  DuplicateGroup* group = findGroup(groupId);
  if (group == nullptr) return;
  // Everything but the oldest copy; the oldest is unmarked even if a strategy had marked it,
  // so the group still keeps one.
  duplicates::applyStrategy(*group, SelectionStrategy::keepOldest);
  notifySelection(groupId);
}

void DuplicatesViewModel::deselectAllInGroup(const QString& groupId) {
  DuplicateGroup* group = findGroup(groupId);
  if (group == nullptr) return;
  for (auto& file : group->files) file.isSelected = false;
  notifySelection(groupId);
}

void DuplicatesViewModel::toggleFile(const QString& groupId, const QString& fileId) {
  DuplicateGroup* group = findGroup(groupId);
  if (group == nullptr) return;
  const std::string key = fileId.toStdString();
  const auto file = std::find_if(group->files.begin(), group->files.end(), [&](const auto& f) { return f.id == key; });
  if (file == group->files.end()) return;
  const auto unselected = std::count_if(group->files.begin(), group->files.end(), [](const auto& f) { return !f.isSelected; });
  if (!file->isSelected && unselected <= 1) return;
  file->isSelected = !file->isSelected;
  notifySelection(groupId);
}

void DuplicatesViewModel::requestConfirmation() {
  if (phase_ == Phase::preview && totalSelectedCount() >= 1) setPhase(Phase::confirming);
}

void DuplicatesViewModel::cancelConfirmation() {
  if (phase_ == Phase::confirming) setPhase(Phase::preview);
}

void DuplicatesViewModel::finish(app::AppState& appState) {
  reset();
  appState.setSelectedNavItem(app::NavigationItem::dashboard);
}

void DuplicatesViewModel::scan(const QString& directory, app::ServiceHandle* service, app::DebugLogger* logger) {
  auto engine = service ? service->get<DuplicateServiceProtocol>() : nullptr;
  if (engine && logger && !directory.isEmpty()) scan(QFile::encodeName(directory).toStdString(), std::move(engine), *logger);
}

void DuplicatesViewModel::scanFolder(const QUrl& folder, app::ServiceHandle* service, app::DebugLogger* logger) {
  if (folder.isLocalFile()) scan(folder.toLocalFile(), service, logger);
}

void DuplicatesViewModel::rescan(app::ServiceHandle* service, app::DebugLogger* logger) {
  auto engine = service ? service->get<DuplicateServiceProtocol>() : nullptr;
  if (engine && logger) rescan(std::move(engine), *logger);
}

void DuplicatesViewModel::confirmDelete(app::ServiceHandle* service, app::AppState* appState,
                                        app::DebugLogger* logger) {
  auto engine = service ? service->get<DuplicateServiceProtocol>() : nullptr;
  if (engine && appState && logger) confirmDelete(std::move(engine), *appState, *logger);
}

void DuplicatesViewModel::finish(app::AppState* appState) {
  if (appState) finish(*appState);
}

QString DuplicatesViewModel::activeGroupId(const QString& selectedGroupId) const {
  if (!selectedGroupId.isEmpty()) return selectedGroupId;
  return groups_.empty() ? QString() : QString::fromStdString(groups_.front().id);
}

QString DuplicatesViewModel::fileIcon(const QString& path) {
  const std::string_view icon = duplicates::fileIcon(path.toStdString());
  return QString::fromUtf8(icon.data(), static_cast<qsizetype>(icon.size()));
}

} // namespace halcyra::duplicates
