#include "analyzer/viewmodel/DiskAnalyzerViewModel.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <QCollator>
#include <QCoreApplication>
#include <QPointer>

#include <sys/stat.h>

#include "analyzer/TreemapLayout.h"
#include "app/BackgroundTask.h"
#include "core/ByteFormatter.h"
#include "core/CleanError.h"

namespace halcyra::analyzer {
namespace {

using Level = core::LogEntry::LogLevel;
using Source = core::LogEntry::LogSource;

QString formatBytes(std::int64_t bytes) { return QString::fromStdString(core::ByteFormatter::format(bytes)); }
QString text(const std::string& bytes) { return QString::fromStdString(bytes); }

const char* kTreemapTab = QT_TRANSLATE_NOOP("Strings", "Treemap");
const char* kLargestFilesTab = QT_TRANSLATE_NOOP("Strings", "Largest Files");

// Depth first, the node itself before its children: the first node with exactly this path.
const DirectoryNode* findNode(const std::string& path, const DirectoryNode& node) {
  if (node.path == path) return &node;
  for (const auto& child : node.children) {
    if (const DirectoryNode* found = findNode(path, child)) return found;
  }
  return nullptr;
}

QString colourName(const TreemapColor& colour) {
  return QString::asprintf("#%02x%02x%02x", colour.red, colour.green, colour.blue);
}

} // namespace

DiskAnalyzerViewModel::DiskAnalyzerViewModel(std::shared_ptr<platform::Workspace> workspace, QString home,
                                             QObject* parent)
    : QObject(parent), workspace_(std::move(workspace)), home_(std::move(home)),
      rows_(new DirectoryRowsModel(selectedPaths_, this)) {}

DiskAnalyzerViewModel::~DiskAnalyzerViewModel() = default;

QString DiskAnalyzerViewModel::phaseName() const {
  switch (phase_) {
  case Phase::idle: return QStringLiteral("idle");
  case Phase::scanning: return QStringLiteral("scanning");
  case Phase::results: return QStringLiteral("results");
  case Phase::error: return QStringLiteral("error");
  }
  return {};
}

void DiskAnalyzerViewModel::setPhase(Phase phase) {
  // Always notifies: a new error text is a change even in the same phase.
  phase_ = phase;
  emit phaseChanged();
}

void DiskAnalyzerViewModel::setScanStatus(const QString& status) {
  if (status == scanStatus_) return;
  scanStatus_ = status;
  emit scanStatusChanged();
}

void DiskAnalyzerViewModel::setConfirmingDelete(bool confirming) {
  if (confirming == isConfirmingDelete_) return;
  isConfirmingDelete_ = confirming;
  emit isConfirmingDeleteChanged();
}

void DiskAnalyzerViewModel::setResult(std::optional<DiskAnalyzerScanResult> result) {
  // The breadcrumb points into the old tree: it goes before the tree does.
  breadcrumb_.clear();
  scanResult_ = std::move(result);
  emit resultChanged();
  displayHasChanged();
  emit selectionChanged(); // the marked sizes are read from the tree
}

void DiskAnalyzerViewModel::displayHasChanged() {
  const DirectoryNode* current = currentNode();
  rows_->setRows(displayChildren(), current ? current->size : 1);
  ++displayRevision_;
  emit displayChanged();
}

void DiskAnalyzerViewModel::setSortOrder(SortOrder order) {
  if (order == sortOrder_) return;
  sortOrder_ = order;
  displayHasChanged();
}

const DirectoryNode* DiskAnalyzerViewModel::currentNode() const {
  if (!breadcrumb_.empty()) return breadcrumb_.back();
  return scanResult_ ? &scanResult_->root : nullptr;
}

std::vector<const DirectoryNode*> DiskAnalyzerViewModel::displayChildren() const {
  std::vector<const DirectoryNode*> children;
  const DirectoryNode* current = currentNode();
  if (current == nullptr) return children;
  children.reserve(current->children.size());
  for (const auto& child : current->children) children.push_back(&child);
  if (sortOrder_ == SortOrder::sizeDescending) {
    std::stable_sort(children.begin(), children.end(), [](const auto* a, const auto* b) { return a->size > b->size; });
  } else {
    QCollator collator;
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    std::vector<QString> names;
    names.reserve(children.size());
    for (const auto* child : children) names.push_back(text(child->name));
    std::vector<std::size_t> order(children.size());
    for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return collator.compare(names[a], names[b]) < 0; });
    std::vector<const DirectoryNode*> sorted;
    sorted.reserve(children.size());
    for (const std::size_t i : order) sorted.push_back(children[i]);
    children = std::move(sorted);
  }
  return children;
}

std::int64_t DiskAnalyzerViewModel::selectedSize() const {
  if (!scanResult_) return 0;
  std::int64_t total = 0;
  for (const auto& path : selectedPaths_) {
    if (const DirectoryNode* node = findNode(path, scanResult_->root)) total += node->size;
  }
  return total;
}

QString DiskAnalyzerViewModel::describe(std::exception_ptr error) {
  try {
    std::rethrow_exception(error);
  } catch (const std::exception& e) {
    return QString::fromStdString(core::describeError(e));
  } catch (...) {
    return QString::fromStdString(core::CleanError::descriptionOf(core::CleanError::Kind::unknown));
  }
}

void DiskAnalyzerViewModel::scan(const QString& directory, std::shared_ptr<DiskAnalyzerServiceProtocol> service,
                                 app::DebugLogger& logger) {
  lastService_ = service;
  const int generation = ++scanGeneration_;
  setPhase(Phase::scanning);
  setResult(std::nullopt);
  setScanStatus({});
  logger.log(QStringLiteral("Disk analyzer scan started: ") + directory, Level::info, Source::diskAnalyzer);

  QPointer<app::DebugLogger> log(&logger);
  auto onProgress = app::statusRelay(this, [this, generation](const QString& status) {
    if (generation == scanGeneration_) setScanStatus(status);
  });
  app::runInBackground<DiskAnalyzerScanResult>(
      this,
      [service, path = directory.toStdString(), onProgress] { return service->scanDirectory(path, onProgress); },
      [this, log, generation](DiskAnalyzerScanResult result) {
        if (generation != scanGeneration_) return;
        setResult(std::move(result));
        if (log) {
          log->log(QStringLiteral("Disk analyzer complete: %1 files, %2 dirs, %3 total in %4s")
                       .arg(scanResult_->fileCount)
                       .arg(scanResult_->directoryCount)
                       .arg(formatBytes(scanResult_->totalSize))
                       .arg(QString::number(scanResult_->duration, 'f', 1)),
                   Level::info, Source::diskAnalyzer);
        }
        setPhase(Phase::results);
      },
      [this, log, generation](std::exception_ptr error) {
        if (generation != scanGeneration_) return;
        errorText_ = describe(error);
        if (log) log->log(QStringLiteral("Disk analyzer scan error: ") + errorText_, Level::error, Source::diskAnalyzer);
        setPhase(Phase::error);
      });
}

void DiskAnalyzerViewModel::rescan(std::shared_ptr<DiskAnalyzerServiceProtocol> service, app::DebugLogger& logger) {
  const QString path = scanResult_ ? text(scanResult_->root.path) : home_;
  reset();
  scan(path, std::move(service), logger);
}

void DiskAnalyzerViewModel::confirmDelete(app::AppState&, app::DebugLogger& logger) {
  setConfirmingDelete(false);
  int removed = 0;
  std::int64_t freed = 0;
  // In path order, so a folder comes before the folders inside it, which are then gone.
  for (const std::string& path : selectedPaths_) {
    const QString shown = text(path);
    const auto fail = [&](const QString& reason) {
      logger.log(QStringLiteral("Failed to delete %1: %2").arg(shown, reason), Level::error, Source::diskAnalyzer);
    };
    // A fresh look at the path itself, a link not followed. Only folders can be marked, so
    // anything else there now has replaced what the scan saw and is left alone.
    struct stat info {};
    if (::lstat(path.c_str(), &info) != 0) {
      fail(QString::fromLocal8Bit(std::strerror(errno)));
      continue;
    }
    if (!S_ISDIR(info.st_mode)) {
      fail(QStringLiteral("it is no longer a folder"));
      continue;
    }
    if (!workspace_) {
      fail(QStringLiteral("this system offers no Trash"));
      continue;
    }
    const platform::TrashOutcome outcome = workspace_->moveToTrash(path);
    if (!outcome.succeeded()) {
      fail(text(outcome.message));
      continue;
    }
    ++removed;
    // The size of the folder entry itself, not of its contents.
    freed += static_cast<std::int64_t>(info.st_size);
    logger.log(QStringLiteral("Deleted: ") + shown, Level::info, Source::diskAnalyzer);
  }
  logger.log(QStringLiteral("Disk analyzer delete: %1 items removed, %2 freed").arg(removed).arg(formatBytes(freed)),
             Level::info, Source::diskAnalyzer);
  selectedPaths_.clear();
  rows_->selectionChanged();
  emit selectionChanged();
  // The tree is not edited in place: a new walk of the root replaces it.
  if (scanResult_ && lastService_) scan(text(scanResult_->root.path), lastService_, logger);
}

void DiskAnalyzerViewModel::drillInto(const QString& nodeId) {
  const std::string id = nodeId.toStdString();
  for (const DirectoryNode* child : displayChildren()) {
    if (child->id != id) continue;
    if (child->children.empty()) return;
    breadcrumb_.push_back(child);
    displayHasChanged();
    return;
  }
}

void DiskAnalyzerViewModel::navigateToRoot() {
  breadcrumb_.clear();
  displayHasChanged();
}

void DiskAnalyzerViewModel::navigateToBreadcrumb(int index) {
  if (index < 0 || static_cast<std::size_t>(index) >= breadcrumb_.size()) return;
  breadcrumb_.resize(static_cast<std::size_t>(index) + 1);
  displayHasChanged();
}

void DiskAnalyzerViewModel::toggleSelectionOfPath(const std::string& path) {
  if (!selectedPaths_.erase(path)) selectedPaths_.insert(path);
  rows_->selectionChanged(path);
  emit selectionChanged();
}

void DiskAnalyzerViewModel::toggleSelection(const QString& nodeId) {
  const std::string id = nodeId.toStdString();
  for (const DirectoryNode* child : displayChildren()) {
    if (child->id == id) return toggleSelectionOfPath(child->path);
  }
}

bool DiskAnalyzerViewModel::isSelected(const QString& nodeId) const {
  const std::string id = nodeId.toStdString();
  for (const DirectoryNode* child : displayChildren()) {
    if (child->id == id) return selectedPaths_.count(child->path) > 0;
  }
  return false;
}

void DiskAnalyzerViewModel::deselectAll() {
  if (selectedPaths_.empty()) return;
  selectedPaths_.clear();
  rows_->selectionChanged();
  emit selectionChanged();
}

void DiskAnalyzerViewModel::requestDelete() {
  if (!selectedPaths_.empty()) setConfirmingDelete(true);
}

void DiskAnalyzerViewModel::cancelDelete() { setConfirmingDelete(false); }

void DiskAnalyzerViewModel::reset() {
  setPhase(Phase::idle);
  setScanStatus({});
  selectedPaths_.clear();
  setConfirmingDelete(false);
  setResult(std::nullopt);
}

void DiskAnalyzerViewModel::revealInFileManager(const QString& fileId, app::DebugLogger* logger) {
  if (!scanResult_) return;
  const std::string id = fileId.toStdString();
  const auto entry = std::find_if(scanResult_->largestFiles.begin(), scanResult_->largestFiles.end(),
                                  [&](const LargestFileEntry& file) { return file.id == id; });
  if (entry == scanResult_->largestFiles.end() || !workspace_) return;
  QPointer<app::DebugLogger> log(logger);
  app::runInBackground<bool>(
      this, [workspace = workspace_, path = entry->path] { return workspace->revealInFileManager(path); },
      [log, shown = text(entry->path)](bool revealed) {
        if (!revealed && log) {
          log->log(QStringLiteral("Could not reveal ") + shown, Level::warn, Source::diskAnalyzer);
        }
      },
      [](std::exception_ptr) {});
}

QVariantList DiskAnalyzerViewModel::treemapCells(double width, double height) const {
  QVariantList cells;
  // A view without area has nothing to divide.
  if (!(width > 0) || !(height > 0)) return cells;
  const auto children = displayChildren();
  std::vector<double> sizes;
  sizes.reserve(children.size());
  for (const DirectoryNode* child : children) sizes.push_back(static_cast<double>(child->size));
  const auto rects = squarifiedLayout(sizes, {0, 0, width, height});
  for (std::size_t i = 0; i < children.size(); ++i) {
    const DirectoryNode& node = *children[i];
    const TreemapRect& rect = rects[i];
    const TreemapRect box = treemapCellBox(rect);
    cells.append(QVariantMap{
        {QStringLiteral("id"), text(node.id)},
        {QStringLiteral("name"), text(node.name)},
        {QStringLiteral("x"), box.x},
        {QStringLiteral("y"), box.y},
        {QStringLiteral("width"), box.width},
        {QStringLiteral("height"), box.height},
        {QStringLiteral("color"), colourName(treemapColor(i))},
        {QStringLiteral("showsLabel"), treemapCellShowsLabel(rect)},
        {QStringLiteral("showsSizeLine"), treemapCellShowsSizeLine(rect)},
        {QStringLiteral("nameFontSize"), treemapCellNameFontSize(rect)},
        {QStringLiteral("sizeFontSize"), treemapCellSizeFontSize(rect)},
        {QStringLiteral("sizeText"), formatBytes(node.size)},
        {QStringLiteral("tooltip"), text(treemapCellTooltip(node))},
    });
  }
  return cells;
}

void DiskAnalyzerViewModel::scan(const QString& directory, app::ServiceHandle* service, app::DebugLogger* logger) {
  auto engine = service ? service->get<DiskAnalyzerServiceProtocol>() : nullptr;
  if (engine && logger && !directory.isEmpty()) scan(directory, std::move(engine), *logger);
}

void DiskAnalyzerViewModel::scanFolder(const QUrl& folder, app::ServiceHandle* service, app::DebugLogger* logger) {
  if (folder.isLocalFile()) scan(folder.toLocalFile(), service, logger);
}

void DiskAnalyzerViewModel::rescan(app::ServiceHandle* service, app::DebugLogger* logger) {
  auto engine = service ? service->get<DiskAnalyzerServiceProtocol>() : nullptr;
  if (engine && logger) rescan(std::move(engine), *logger);
}

void DiskAnalyzerViewModel::confirmDelete(app::AppState* appState, app::DebugLogger* logger) {
  if (appState && logger) confirmDelete(*appState, *logger);
}

QString DiskAnalyzerViewModel::totalSizeText() const { return formatBytes(scanResult_ ? scanResult_->totalSize : 0); }

QString DiskAnalyzerViewModel::rootName() const {
  return scanResult_ ? text(scanResult_->root.name) : QCoreApplication::translate("Strings", "Root");
}

QVariantList DiskAnalyzerViewModel::largestFiles() const {
  QVariantList files;
  if (!scanResult_) return files;
  for (const auto& file : scanResult_->largestFiles) {
    files.append(QVariantMap{{QStringLiteral("id"), text(file.id)},
                             {QStringLiteral("name"), text(file.name)},
                             {QStringLiteral("path"), text(file.path)},
                             {QStringLiteral("sizeText"), formatBytes(file.size)}});
  }
  return files;
}

QVariantList DiskAnalyzerViewModel::breadcrumbEntries() const {
  QVariantList entries;
  for (std::size_t i = 0; i < breadcrumb_.size(); ++i) {
    entries.append(QVariantMap{{QStringLiteral("name"), text(breadcrumb_[i]->name)},
                               {QStringLiteral("index"), static_cast<int>(i)}});
  }
  return entries;
}

int DiskAnalyzerViewModel::displayCount() const {
  const DirectoryNode* current = currentNode();
  return current ? static_cast<int>(current->children.size()) : 0;
}

QString DiskAnalyzerViewModel::selectedTab() const { return tabs().at(selectedTab_ == ResultTab::treemap ? 0 : 1); }

void DiskAnalyzerViewModel::setSelectedTab(const QString& tab) {
  ResultTab chosen;
  if (tab == tabs().at(0)) {
    chosen = ResultTab::treemap;
  } else if (tab == tabs().at(1)) {
    chosen = ResultTab::largestFiles;
  } else {
    return;
  }
  if (chosen == selectedTab_) return;
  selectedTab_ = chosen;
  emit selectedTabChanged();
}

QStringList DiskAnalyzerViewModel::tabs() const {
  return {QCoreApplication::translate("Strings", kTreemapTab),
          QCoreApplication::translate("Strings", kLargestFilesTab)};
}

QString DiskAnalyzerViewModel::selectedSizeText() const { return formatBytes(selectedSize()); }

QVariantList DiskAnalyzerViewModel::folderTargets() const {
  struct Target {
    const char* label;
    const char* symbol;
    const char* folder; // below the home; empty for the home itself
  };
  static constexpr Target kTargets[] = {
      {QT_TRANSLATE_NOOP("Strings", "Home"), "house.fill", ""},
      {QT_TRANSLATE_NOOP("Strings", "Downloads"), "arrow.down.circle", "/Downloads"},
      {QT_TRANSLATE_NOOP("Strings", "Documents"), "doc.text", "/Documents"},
      {QT_TRANSLATE_NOOP("Strings", "Desktop"), "desktopcomputer", "/Desktop"},
      {QT_TRANSLATE_NOOP("Strings", "Pictures"), "photo.on.rectangle", "/Pictures"},
  };
  QVariantList targets;
  for (const auto& target : kTargets) {
    targets.append(QVariantMap{{QStringLiteral("label"), QCoreApplication::translate("Strings", target.label)},
                               {QStringLiteral("symbol"), QString::fromLatin1(target.symbol)},
                               {QStringLiteral("path"), home_ + QString::fromLatin1(target.folder)}});
  }
  return targets;
}

QVariantMap DiskAnalyzerViewModel::treemapStyle() const {
  using namespace TreemapCellStyle;
  return {{QStringLiteral("cornerRadius"), kCornerRadius},     {QStringLiteral("restingOpacity"), kRestingOpacity},
          {QStringLiteral("hoveredOpacity"), kHoveredOpacity}, {QStringLiteral("borderOpacity"), kBorderOpacity},
          {QStringLiteral("borderWidth"), kBorderWidth},       {QStringLiteral("labelPadding"), kLabelPadding},
          {QStringLiteral("labelSpacing"), kLabelSpacing},     {QStringLiteral("sizeLineOpacity"), kSizeLineOpacity}};
}

} // namespace halcyra::analyzer
