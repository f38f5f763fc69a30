#include "clean/viewmodel/CleanViewModel.h"

#include <algorithm>
#include <map>
#include <set>

#include <QVariantMap>

#include "app/BackgroundTask.h"
#include "clean/PreviewLayout.h"
#include "clean/Sections.h"
#include "core/ByteFormatter.h"
#include "core/CleanError.h"

namespace halcyra::clean {
namespace {

using Level = core::LogEntry::LogLevel;
using Source = core::LogEntry::LogSource;

QString formatBytes(std::int64_t bytes) { return QString::fromStdString(core::ByteFormatter::format(bytes)); }
QString toQString(std::string_view text) { return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())); }

} // namespace

CleanViewModel::CleanViewModel(platform::FullDiskAccessChecker accessChecker, bool hasAccessPermission,
                               QObject* parent)
    : QObject(parent), accessChecker_(std::move(accessChecker)), hasAccessPermission_(hasAccessPermission),
      itemsModel_(new CleanItemsModel(categories_, this)) {}

CleanViewModel::~CleanViewModel() = default;

QString CleanViewModel::phaseName() const {
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

QString CleanViewModel::freedText() const { return formatBytes(result_ ? result_->freedBytes : 0); }

std::int64_t CleanViewModel::totalReclaimableSize() const { return reclaimableSize(categories_); }

std::int64_t CleanViewModel::totalSelectedSize() const {
  std::int64_t total = 0;
  for (const auto& category : categories_) total += category.selectedSize();
  return total;
}

int CleanViewModel::selectedItemCount() const {
  std::size_t count = 0;
  for (const auto& category : categories_) count += category.selectedCount();
  return static_cast<int>(count);
}

QString CleanViewModel::totalReclaimableText() const { return formatBytes(totalReclaimableSize()); }
QString CleanViewModel::totalSelectedText() const { return formatBytes(totalSelectedSize()); }

void CleanViewModel::setPhase(Phase phase) {
  // Payload phases always notify: a new error text or result is a change even in the same phase.
  phase_ = phase;
  emit phaseChanged();
}

void CleanViewModel::setScanStatus(const QString& status) {
  if (status == scanStatus_) return;
  scanStatus_ = status;
  emit scanStatusChanged();
}

void CleanViewModel::setCategories(std::vector<CleanCategory> categories) {
  categories_ = std::move(categories);
  itemsModel_->reload();
  emit categoriesChanged();
  emit selectionChanged();
}

void CleanViewModel::notifySelection(const QString& categoryId, int row) {
  if (categoryId.isEmpty()) {
    for (const auto& category : categories_) itemsModel_->selectionChanged(QString::fromStdString(category.id));
  } else {
    itemsModel_->selectionChanged(categoryId, row);
  }
  emit selectionChanged();
}

QString CleanViewModel::describe(std::exception_ptr error) {
  try {
    std::rethrow_exception(error);
  } catch (const std::exception& e) {
    return QString::fromStdString(core::describeError(e));
  } catch (...) {
    return QString::fromStdString(core::CleanError::descriptionOf(core::CleanError::Kind::unknown));
  }
}

void CleanViewModel::scan(std::shared_ptr<CleanServiceProtocol> service, app::DebugLogger& logger) {
  setPhase(Phase::scanning);
  setCategories({});
  setScanStatus({});
  logger.log(QStringLiteral("Scan started"), Level::info, Source::clean);
  logger.log(QString::fromStdString(accessChecker_.diagnosticInfo()), Level::info, Source::clean);

  QPointer<app::DebugLogger> log(&logger);
  auto onProgress = app::statusRelay(this, [this, log](const QString& status) {
    setScanStatus(status);
    if (log) log->log(status, Level::info, Source::clean);
  });
  app::runInBackground<std::vector<CleanCategory>>(
      this, [service, onProgress] { return service->scan(onProgress); },
      [this, log](std::vector<CleanCategory> found) {
        setCategories(std::move(found));
        std::size_t itemCount = 0;
        for (const auto& category : categories_) itemCount += category.items.size();
        if (log) {
          log->log(QStringLiteral("Scan complete: %1 categories, %2 items, %3 reclaimable")
                       .arg(categories_.size())
                       .arg(itemCount)
                       .arg(totalReclaimableText()),
                   Level::info, Source::clean);
        }
        setScanStatus({});
        scanDate_ = QDateTime::currentDateTime();
        emit scanDateChanged();
        setPhase(categories_.empty() ? Phase::idle : Phase::preview);
      },
      [this, log](std::exception_ptr error) {
        errorText_ = describe(error);
        if (log) log->log(QStringLiteral("Scan error: ") + errorText_, Level::error, Source::clean);
        setScanStatus({});
        setPhase(Phase::error);
      });
}

void CleanViewModel::confirmClean(std::shared_ptr<CleanServiceProtocol> service, app::AppState& appState,
                                  app::DebugLogger& logger) {
  setPhase(Phase::executing);
  progress_ = 0;
  emit progressChanged();
  logger.log(QStringLiteral("Clean started: %1 items, %2 selected").arg(selectedItemCount()).arg(totalSelectedText()),
             Level::info, Source::clean);

  // Items by their own flag: a category shown unselected may still hold selected items.
  std::vector<CleanItem> items;
  for (const auto& category : categories_) {
    for (const auto& item : category.items) {
      if (item.isSelected) items.push_back(item);
    }
  }

  QPointer<app::DebugLogger> log(&logger);
  QPointer<app::AppState> state(&appState);
  auto onProgress = app::statusRelay(this, [this](const QString& status) { setScanStatus(status); });
  app::runInBackground<CleanResult>(
      this, [service, items = std::move(items), onProgress] { return service->clean(items, onProgress); },
      [this, log, state](CleanResult result) {
        if (state) state->setLastCleanDate(QDateTime::currentDateTime());
        if (log) {
          log->log(QStringLiteral("Clean complete: freed %1, %2 items in %3s")
                       .arg(formatBytes(result.freedBytes))
                       .arg(result.itemsCleaned)
                       .arg(QString::number(result.duration, 'f', 1)),
                   Level::info, Source::clean);
        }
        result_ = result;
        setPhase(Phase::summary);
        if (cleanReporter_) cleanReporter_(result);
      },
      [this, log](std::exception_ptr error) {
        errorText_ = describe(error);
        if (log) log->log(QStringLiteral("Clean error: ") + errorText_, Level::error, Source::clean);
        setPhase(Phase::error);
      });
}

void CleanViewModel::rescan(std::shared_ptr<CleanServiceProtocol> service, app::DebugLogger& logger) {
  reset();
  scan(std::move(service), logger);
}

bool CleanViewModel::autoScanIfRequested(std::shared_ptr<CleanServiceProtocol> service, app::AppState& appState,
                                         app::DebugLogger& logger) {
  if (!appState.shouldAutoScan() || phase_ != Phase::idle) return false;
  appState.setShouldAutoScan(false);
  scan(std::move(service), logger);
  return true;
}

void CleanViewModel::selectAll() {
  for (auto& category : categories_) {
    if (!isReclaimable(category)) continue;
    category.isSelected = true;
    for (auto& item : category.items) item.isSelected = true;
  }
  notifySelection();
}

void CleanViewModel::deselectAll() {
  for (auto& category : categories_) {
    category.isSelected = false;
    for (auto& item : category.items) item.isSelected = false;
  }
  notifySelection();
}

void CleanViewModel::toggleCategory(const QString& id) {
  const std::string key = id.toStdString();
  const auto found = std::find_if(categories_.begin(), categories_.end(), [&](const auto& c) { return c.id == key; });
  if (found == categories_.end() || !isReclaimable(*found)) return;
  found->isSelected = !found->isSelected;
  for (auto& item : found->items) item.isSelected = found->isSelected;
  notifySelection(id);
}

void CleanViewModel::toggleItem(const QString& categoryId, const QString& itemId) {
  const std::string categoryKey = categoryId.toStdString();
  const auto category =
      std::find_if(categories_.begin(), categories_.end(), [&](const auto& c) { return c.id == categoryKey; });
  if (category == categories_.end() || category->isWhitelisted) return;
  const std::string itemKey = itemId.toStdString();
  const auto item = std::find_if(category->items.begin(), category->items.end(),
                                 [&](const auto& candidate) { return candidate.id == itemKey; });
  if (item == category->items.end()) return;
  item->isSelected = !item->isSelected;
  category->isSelected =
      std::all_of(category->items.begin(), category->items.end(), [](const auto& i) { return i.isSelected; });
  notifySelection(categoryId, static_cast<int>(item - category->items.begin()));
}

void CleanViewModel::reset() {
  setPhase(Phase::idle);
  setCategories({});
  progress_ = 0;
  emit progressChanged();
  scanDate_ = QDateTime();
  emit scanDateChanged();
}

void CleanViewModel::cleanAll() {
  selectAll();
  requestConfirmation();
}

void CleanViewModel::keepOnlySection(const QString& section) {
  std::map<std::string, std::set<std::string>> keep;
  for (const auto& category : reviewableCategories(sectionCategories(section))) {
    std::set<std::string> ids;
    for (const auto& item : category.items) {
      if (item.isSelected) ids.insert(item.id);
    }
    if (!ids.empty()) keep.emplace(category.id, std::move(ids));
  }
  deselectAll();
  for (auto& category : categories_) {
    const auto entry = keep.find(category.id);
    if (entry == keep.end()) continue;
    for (auto& item : category.items) item.isSelected = entry->second.count(item.id) > 0;
    category.isSelected =
        std::any_of(category.items.begin(), category.items.end(), [](const auto& i) { return i.isSelected; });
  }
  notifySelection();
}

void CleanViewModel::selectAllInSection(const QString& section) {
  for (const auto& category : reviewableCategories(sectionCategories(section))) {
    if (!category.isSelected) toggleCategory(QString::fromStdString(category.id));
  }
}

void CleanViewModel::deselectAllInSection(const QString& section) {
  for (const auto& category : reviewableCategories(sectionCategories(section))) {
    if (category.isSelected) toggleCategory(QString::fromStdString(category.id));
  }
}

void CleanViewModel::requestConfirmation() {
  if (selectedItemCount() >= 1) setPhase(Phase::confirming);
}

void CleanViewModel::cancelConfirmation() {
  if (phase_ == Phase::confirming) setPhase(Phase::preview);
}

void CleanViewModel::finish(app::AppState& appState) {
  reset();
  appState.setSelectedNavItem(app::NavigationItem::dashboard);
}

void CleanViewModel::scan(app::ServiceHandle* service, app::DebugLogger* logger) {
  auto engine = service ? service->get<CleanServiceProtocol>() : nullptr;
  if (engine && logger) scan(std::move(engine), *logger);
}

void CleanViewModel::rescan(app::ServiceHandle* service, app::DebugLogger* logger) {
  auto engine = service ? service->get<CleanServiceProtocol>() : nullptr;
  if (engine && logger) rescan(std::move(engine), *logger);
}

void CleanViewModel::confirmClean(app::ServiceHandle* service, app::AppState* appState, app::DebugLogger* logger) {
  auto engine = service ? service->get<CleanServiceProtocol>() : nullptr;
  if (engine && appState && logger) confirmClean(std::move(engine), *appState, *logger);
}

bool CleanViewModel::autoScanIfRequested(app::ServiceHandle* service, app::AppState* appState,
                                         app::DebugLogger* logger) {
  auto engine = service ? service->get<CleanServiceProtocol>() : nullptr;
  return engine && appState && logger && autoScanIfRequested(std::move(engine), *appState, *logger);
}

void CleanViewModel::finish(app::AppState* appState) {
  if (appState) finish(*appState);
}

std::vector<CleanCategory> CleanViewModel::sectionCategories(const QString& section) const {
  const std::string key = section.toStdString();
  std::vector<CleanCategory> result;
  for (const auto& category : categories_) {
    if (category.section == key) result.push_back(category);
  }
  return result;
}

QVariantList CleanViewModel::cards(bool left) const {
  const auto sections = orderedSections(categories_);
  const auto placement = columns(sections);
  QVariantList result;
  for (const std::size_t index : left ? placement.left : placement.right) {
    const auto& [name, members] = sections[index];
    const std::int64_t size = reclaimableSize(members);
    const auto countable = std::count_if(members.begin(), members.end(), isReclaimable);
    const auto skipped = std::count_if(members.begin(), members.end(),
                                       [](const CleanCategory& c) { return c.skipReason && !c.isWhitelisted; });
    result.append(QVariantMap{
        {QStringLiteral("name"), QString::fromStdString(name)},
        {QStringLiteral("title"), toQString(sectionTitle(name))},
        {QStringLiteral("description"), toQString(sectionDescription(name))},
        {QStringLiteral("icon"), toQString(sectionIcon(name))},
        {QStringLiteral("totalSizeText"), formatBytes(size)},
        {QStringLiteral("categoryCount"), static_cast<int>(countable)},
        {QStringLiteral("skippedCount"), static_cast<int>(skipped)},
        {QStringLiteral("height"), cardHeight(size, sections)},
    });
  }
  return result;
}

QVariantList CleanViewModel::leftCards() const { return cards(true); }
QVariantList CleanViewModel::rightCards() const { return cards(false); }

QVariantList CleanViewModel::confirmSections() const {
  struct Row {
    int categories = 0;
    std::int64_t size = 0;
  };
  std::map<std::string, Row> rows; // plain string order, as the confirmation lists them
  for (const auto& category : categories_) {
    if (category.selectedCount() == 0) continue;
    auto& row = rows[category.section];
    row.categories += 1;
    row.size += category.selectedSize();
  }
  QVariantList result;
  for (const auto& [section, row] : rows) {
    result.append(QVariantMap{{QStringLiteral("name"), QString::fromStdString(section)},
                              {QStringLiteral("categoryCount"), row.categories},
                              {QStringLiteral("sizeText"), formatBytes(row.size)}});
  }
  return result;
}

QVariantList CleanViewModel::reviewCategories(const QString& section) const {
  QVariantList result;
  for (const auto& category : reviewableCategories(sectionCategories(section))) {
    result.append(QVariantMap{{QStringLiteral("id"), QString::fromStdString(category.id)},
                              {QStringLiteral("name"), QString::fromStdString(category.name)},
                              {QStringLiteral("icon"), QString::fromStdString(category.icon)},
                              {QStringLiteral("sizeText"), formatBytes(totalSize(category))},
                              {QStringLiteral("isSelected"), category.isSelected}});
  }
  return result;
}

QVariantList CleanViewModel::skippedCategories(const QString& section) const {
  QVariantList result;
  for (const auto& category : clean::skippedCategories(sectionCategories(section))) {
    result.append(QVariantMap{{QStringLiteral("id"), QString::fromStdString(category.id)},
                              {QStringLiteral("name"), QString::fromStdString(category.name)},
                              {QStringLiteral("icon"), QString::fromStdString(category.icon)},
                              {QStringLiteral("reason"), QString::fromStdString(*category.skipReason)}});
  }
  return result;
}

int CleanViewModel::sectionSelectedCount(const QString& section) const {
  std::size_t count = 0;
  for (const auto& category : reviewableCategories(sectionCategories(section))) count += category.selectedCount();
  return static_cast<int>(count);
}

QString CleanViewModel::sectionSelectedSizeText(const QString& section) const {
  std::int64_t size = 0;
  for (const auto& category : reviewableCategories(sectionCategories(section))) size += category.selectedSize();
  return formatBytes(size);
}

QVariantMap CleanViewModel::categoryInfo(const QString& id) const {
  const std::string key = id.toStdString();
  for (const auto& category : categories_) {
    if (category.id != key || category.isWhitelisted) continue;
    QVariantMap info{{QStringLiteral("id"), id},
                     {QStringLiteral("name"), QString::fromStdString(category.name)},
                     {QStringLiteral("itemCount"), static_cast<int>(category.items.size())}};
    if (category.skipReason) info.insert(QStringLiteral("skipReason"), QString::fromStdString(*category.skipReason));
    return info;
  }
  return {};
}

bool CleanViewModel::needsAccessBanner() const { return hasAccessPermission_ && !accessChecker_.hasFullDiskAccess(); }

} // namespace halcyra::clean
