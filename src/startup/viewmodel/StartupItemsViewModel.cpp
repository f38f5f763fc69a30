#include "startup/viewmodel/StartupItemsViewModel.h"

#include <algorithm>
#include <chrono>

#include <QPointer>

#include "app/BackgroundTask.h"
#include "core/CleanError.h"

namespace halcyra::startup {
namespace {

using Level = core::LogEntry::LogLevel;
using Source = core::LogEntry::LogSource;

QString text(const std::string& value) { return QString::fromStdString(value); }

QString stateWord(bool enabled) { return enabled ? QStringLiteral("enabled") : QStringLiteral("disabled"); }

} // namespace

StartupItemsViewModel::StartupItemsViewModel(QObject* parent)
    : QObject(parent), currentModel_(new StartupItemsModel(this)) {}

QString StartupItemsViewModel::phaseName() const {
  switch (phase_) {
  case Phase::idle: return QStringLiteral("idle");
  case Phase::scanning: return QStringLiteral("scanning");
  case Phase::results: return QStringLiteral("results");
  case Phase::error: return QStringLiteral("error");
  }
  return {};
}

QString StartupItemsViewModel::selectedCategoryName() const {
  return QString::fromLatin1(toString(selectedCategory_).data());
}

const std::vector<StartupItem>& StartupItemsViewModel::currentItems() const {
  return selectedCategory_ == StartupItemCategory::launchAgents ? launchAgents_ : loginItems_;
}

int StartupItemsViewModel::enabledCount() const {
  const auto on = [](const StartupItem& item) { return item.isEnabled; };
  return static_cast<int>(std::count_if(loginItems_.begin(), loginItems_.end(), on) +
                          std::count_if(launchAgents_.begin(), launchAgents_.end(), on));
}

void StartupItemsViewModel::setPhase(Phase phase) {
  phase_ = phase;
  emit phaseChanged();
}

void StartupItemsViewModel::setScanStatus(const QString& status) {
  if (status == scanStatus_) return;
  scanStatus_ = status;
  emit scanStatusChanged();
}

void StartupItemsViewModel::showCurrentList() { currentModel_->setItems(currentItems(), togglingItemIds_); }

void StartupItemsViewModel::selectCategory(StartupItemCategory category) {
  if (category == selectedCategory_) return;
  selectedCategory_ = category;
  showCurrentList();
  emit selectedCategoryChanged();
}

void StartupItemsViewModel::selectCategory(const QString& name) {
  if (const auto category = startupItemCategoryFrom(name.toStdString())) selectCategory(*category);
}

QString StartupItemsViewModel::describe(std::exception_ptr error) {
  try {
    std::rethrow_exception(error);
  } catch (const std::exception& e) {
    return text(core::describeError(e));
  } catch (...) {
    return text(core::CleanError::descriptionOf(core::CleanError::Kind::unknown));
  }
}

void StartupItemsViewModel::reset() {
  ++generation_;
  setPhase(Phase::idle);
  setScanStatus({});
  loginItems_.clear();
  launchAgents_.clear();
  togglingItemIds_.clear();
  selectedCategory_ = StartupItemCategory::loginItems;
  showCurrentList();
  emit selectedCategoryChanged();
  emit itemsChanged();
}

void StartupItemsViewModel::scan(std::shared_ptr<StartupItemsServiceProtocol> service, app::DebugLogger& logger) {
  if (!service || phase_ == Phase::scanning) return;
  const auto started = std::chrono::steady_clock::now();
  const std::uint64_t generation = generation_;
  setPhase(Phase::scanning);
  setScanStatus({});
  logger.log(QStringLiteral("Startup items scan started"), Level::info, Source::startupItems);
  setScanStatus(QStringLiteral("Scanning login items\u2026"));

  QPointer<app::DebugLogger> log(&logger);
  const auto fail = [this, log, generation](std::exception_ptr error) {
    if (generation != generation_) return;
    errorText_ = describe(error);
    if (log) log->log(QStringLiteral("Startup items scan failed: ") + errorText_, Level::error, Source::startupItems);
    setPhase(Phase::error);
  };
  // The texts of the second scan come straight to the status line; one that arrives after
  // the scan has ended is dropped with the rest of an outdated scan.
  const auto onProgress = app::statusRelay(this, [this, generation](const QString& status) {
    if (generation == generation_ && phase_ == Phase::scanning) setScanStatus(status);
  });

  app::runInBackground<std::vector<StartupItem>>(
      this, [service] { return service->scanLoginItems(); },
      [this, service, log, generation, started, onProgress, fail](std::vector<StartupItem> logins) {
        if (generation != generation_) return;
        setScanStatus(QStringLiteral("Scanning launch agents\u2026"));
        app::runInBackground<std::vector<StartupItem>>(
            this, [service, onProgress] { return service->scanLaunchAgents(onProgress); },
            [this, log, generation, started, logins = std::move(logins)](std::vector<StartupItem> agents) mutable {
              if (generation != generation_) return;
              loginItems_ = std::move(logins);
              launchAgents_ = std::move(agents);
              showCurrentList();
              emit itemsChanged();
              const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - started;
              if (log) {
                log->log(QStringLiteral("Startup items scan complete: %1 login items, %2 launch agents in %3s")
                             .arg(loginItems_.size())
                             .arg(launchAgents_.size())
                             .arg(QString::number(seconds.count(), 'f', 1)),
                         Level::info, Source::startupItems);
              }
              setPhase(Phase::results);
            },
            fail);
      },
      fail);
}

bool StartupItemsViewModel::applyState(const StartupItem& item, bool isEnabled) {
  auto& list = item.category == StartupItemCategory::launchAgents ? launchAgents_ : loginItems_;
  const auto found = std::find_if(list.begin(), list.end(), [&](const StartupItem& i) { return i.id == item.id; });
  if (found == list.end()) return false;
  found->isEnabled = isEnabled;
  if (item.category == selectedCategory_) currentModel_->update(*found, togglingItemIds_.contains(item.id));
  emit itemsChanged();
  return true;
}

void StartupItemsViewModel::finishToggle(const std::string& id) {
  togglingItemIds_.erase(id);
  currentModel_->setToggling(id, false);
}

void StartupItemsViewModel::toggleItem(const StartupItem& item, std::shared_ptr<StartupItemsServiceProtocol> service,
                                       app::DebugLogger& logger) {
  if (!service || togglingItemIds_.contains(item.id)) return;
  const bool newState = !item.isEnabled;
  togglingItemIds_.insert(item.id);
  currentModel_->setToggling(item.id, true);
  const QString name = text(item.name);
  QPointer<app::DebugLogger> log(&logger);
  const auto fail = [this, log, item, name](std::exception_ptr error) {
    if (log) {
      log->log(QStringLiteral("Failed to toggle '%1': %2").arg(name, describe(error)), Level::error, Source::startupItems);
    }
    finishToggle(item.id);
  };

  if (item.category == StartupItemCategory::launchAgents) {
    if (!item.label || !item.plistPath) {
      logger.log(QStringLiteral("Toggle failed: missing label or plistPath for '%1'").arg(name), Level::error,
                 Source::startupItems);
      finishToggle(item.id);
      return;
    }
    logger.log(QStringLiteral("Toggling '%1' (%2) to %3\u2026").arg(name, text(*item.label), stateWord(newState)),
               Level::info, Source::startupItems);
    app::runInBackground<std::string>(
        this,
        [service, label = *item.label, plistPath = *item.plistPath, newState] {
          return service->toggleLaunchAgent(label, plistPath, newState);
        },
        [this, log, item, newState](std::string report) {
          applyState(item, newState);
          if (report.ends_with('\n')) report.pop_back();
          if (log) log->log(text(report), Level::info, Source::startupItems);
          finishToggle(item.id);
        },
        fail);
    return;
  }
  app::runInBackground<bool>(
      this,
      [service, name = item.name, path = item.path, newState] {
        service->toggleLoginItem(name, path, newState);
        return true;
      },
      [this, log, item, name, newState](bool) {
        applyState(item, newState);
        if (log) {
          log->log(QStringLiteral("Login item '%1' %2").arg(name, stateWord(newState)), Level::info,
                   Source::startupItems);
        }
        finishToggle(item.id);
      },
      fail);
}

void StartupItemsViewModel::scan(app::ServiceHandle* service, app::DebugLogger* logger) {
  auto engine = service ? service->get<StartupItemsServiceProtocol>() : nullptr;
  if (engine && logger) scan(std::move(engine), *logger);
}

void StartupItemsViewModel::rescan(app::ServiceHandle* service, app::DebugLogger* logger) {
  auto engine = service ? service->get<StartupItemsServiceProtocol>() : nullptr;
  if (!engine || !logger) return;
  reset();
  scan(std::move(engine), *logger);
}

void StartupItemsViewModel::toggleItem(const QString& id, app::ServiceHandle* service, app::DebugLogger* logger) {
  auto engine = service ? service->get<StartupItemsServiceProtocol>() : nullptr;
  if (!engine || !logger) return;
  const std::string key = id.toStdString();
  for (const auto& item : currentItems()) {
    if (item.id == key) {
      // A copy: the list may be rebuilt while the command runs.
      const StartupItem flipped = item;
      toggleItem(flipped, std::move(engine), *logger);
      return;
    }
  }
}

} // namespace halcyra::startup
