#include "StartupShots.h"

#include <stdexcept>

namespace halcyra::app {

using startup::StartupItem;
using startup::StartupItemCategory;
using startup::StartupItemsViewModel;

void ScriptedStartupService::holdNext() {
  std::lock_guard lock(mutex_);
  hold_ = true;
}

void ScriptedStartupService::release() {
  {
    std::lock_guard lock(mutex_);
    hold_ = false;
  }
  released_.notify_all();
}

void ScriptedStartupService::failNextScan() {
  std::lock_guard lock(mutex_);
  fail_ = true;
}

bool ScriptedStartupService::isHolding() {
  std::lock_guard lock(mutex_);
  return holding_;
}

void ScriptedStartupService::pass() {
  std::unique_lock lock(mutex_);
  holding_ = hold_;
  released_.wait(lock, [this] { return !hold_; });
  holding_ = false;
}

std::vector<StartupItem> ScriptedStartupService::scanLoginItems() {
  {
    std::lock_guard lock(mutex_);
    if (fail_) {
      fail_ = false;
      throw std::runtime_error("The startup items could not be read: /usr/bin/osascript could not be started");
    }
  }
  return logins;
}

std::vector<StartupItem> ScriptedStartupService::scanLaunchAgents(const ProgressCallback& onProgress) {
  onProgress("Checking com.dropbox.DropboxUpdater.wake.plist\u2026");
  pass();
  return agents;
}

void ScriptedStartupService::toggleLoginItem(const std::string&, const std::string&, bool) { pass(); }

std::string ScriptedStartupService::toggleLaunchAgent(const std::string& label, const std::string&, bool enable) {
  pass();
  return "Toggle " + label + ": enable=" + (enable ? "true" : "false");
}

namespace {

StartupItem loginItem(const std::string& name, const std::string& path) {
  StartupItem item;
  item.id = "login-" + path;
  item.name = name;
  item.path = path;
  return item;
}

StartupItem job(const std::string& name, const std::string& label, const std::string& path, bool enabled,
                const std::string& plistFolder) {
  StartupItem item;
  item.id = "agent-" + label;
  item.name = name;
  item.path = path;
  item.category = StartupItemCategory::launchAgents;
  item.isEnabled = enabled;
  item.label = label;
  item.plistPath = plistFolder + "/" + label + ".plist";
  return item;
}

} // namespace

std::shared_ptr<ScriptedStartupService> scriptedStartup() {
  auto service = std::make_shared<ScriptedStartupService>();
  service->logins = {loginItem("Docker", "/Applications/Docker.app"),
                     loginItem("GitHub Desktop", "/Applications/GitHub Desktop.app"),
                     loginItem("LM Studio", "/Applications/LM Studio.app"),
                     loginItem("Proton Mail Bridge", "/Applications/Proton Mail Bridge.app"),
                     loginItem("Display Menu Helper",
                               "/Applications/Display Menu.app/Contents/Library/LoginItems/Display Menu Helper.app")};
  const std::string agents = "/Users/sam/Library/LaunchAgents";
  const std::string daemons = "/Library/LaunchDaemons";
  service->agents = {
      job("Acme Sync Agent", "com.acme.sync", "/Applications/Acme Sync.app", true, agents),
      job("com.docker.vmnetd Service", "com.docker.vmnetd", "/Library/PrivilegedHelperTools/com.docker.vmnetd", false,
          daemons),
      job("DropboxUpdater Agent", "com.dropbox.DropboxUpdater.wake",
          "/Users/sam/Library/Application Support/Dropbox/DropboxUpdater/Dropbox Updater.app", true, agents),
      job("Google Updater Agent", "com.google.keystone.agent",
          "/Users/sam/Library/Google/GoogleSoftwareUpdate/GoogleSoftwareUpdate.bundle/Contents/Resources/"
          "GoogleSoftwareUpdateAgent.app",
          true, "/Library/LaunchAgents"),
      job("launch.sh Service", "com.zerotier.one", "/Library/Application Support/ZeroTier/One/launch.sh", true, daemons),
      job("php-fpm Service", "homebrew.mxcl.php@8.2", "/opt/homebrew/opt/php@8.2/sbin/php-fpm", false, daemons),
      job("Update Agent", "com.microsoft.update.agent",
          "/Library/Application Support/Microsoft/MAU2.0/Microsoft AutoUpdate.app", true, "/Library/LaunchAgents")};
  return service;
}

void shootStartup(HalcyraApp& app, ScriptedStartupService& service, const ShotTools& tools) {
  auto& viewModel = app.startupItemsViewModel();
  auto& logger = app.debugLogger();
  const auto engine = std::shared_ptr<startup::StartupItemsServiceProtocol>(&service, [](auto*) {});
  const auto reach = [&](StartupItemsViewModel::Phase phase, const char* what) {
    if (!tools.waitFor([&] { return viewModel.phase() == phase; })) tools.fail(QStringLiteral("startup: ") + what);
  };

  app.appState().setSelectedNavItem(NavigationItem::startupItems);
  tools.shot(QStringLiteral("startup-1-idle"));

  service.holdNext();
  viewModel.scan(engine, logger);
  if (!tools.waitFor([&] { return service.isHolding() && viewModel.scanStatus().startsWith(QStringLiteral("Checking")); })) {
    tools.fail(QStringLiteral("startup: the scan showed no status"));
  }
  tools.shot(QStringLiteral("startup-2-scanning"));
  service.release();
  reach(StartupItemsViewModel::Phase::results, "the scan did not end in its results");
  tools.shot(QStringLiteral("startup-3-login-items"));

  // The services, with one switch under way: its spinner stands where the switch was.
  viewModel.selectCategory(StartupItemCategory::launchAgents);
  service.holdNext();
  viewModel.toggleItem(viewModel.launchAgents()[1], engine, logger);
  if (!tools.waitFor([&] { return service.isHolding(); })) tools.fail(QStringLiteral("startup: the switch did not start"));
  const QModelIndex switching = viewModel.currentItemsModel()->index(1);
  if (!switching.data(startup::StartupItemsModel::IsTogglingRole).toBool()) {
    tools.fail(QStringLiteral("startup: the row being switched does not say so"));
  }
  tools.shot(QStringLiteral("startup-4-services"));
  service.release();
  if (!tools.waitFor([&] { return viewModel.togglingItemIds().empty(); })) {
    tools.fail(QStringLiteral("startup: the switch did not end"));
  }
  if (!viewModel.launchAgents()[1].isEnabled) tools.fail(QStringLiteral("startup: the switch did not move"));

  // A machine with no login items.
  const auto logins = service.logins;
  service.logins.clear();
  viewModel.reset();
  viewModel.scan(engine, logger);
  reach(StartupItemsViewModel::Phase::results, "the second scan did not end in its results");
  if (!tools.waitFor([&] {
        // The page on show, not one the loader has let go of but not yet deleted.
        QObject* page = tools.find("startupPage");
        auto* shown = page != nullptr ? page->property("item").value<QObject*>() : nullptr;
        QObject* empty = shown != nullptr ? shown->findChild<QObject*>(QStringLiteral("startupEmpty")) : nullptr;
        return empty != nullptr && empty->property("visible").toBool();
      })) {
    tools.fail(QStringLiteral("startup: the empty list shows no empty state"));
  }
  tools.shot(QStringLiteral("startup-5-empty"));
  service.logins = logins;

  viewModel.reset();
  service.failNextScan();
  viewModel.scan(engine, logger);
  reach(StartupItemsViewModel::Phase::error, "the failed scan did not show its error");
  tools.shot(QStringLiteral("startup-6-error"));
  viewModel.reset();
}

} // namespace halcyra::app
