#include <gtest/gtest.h>

#include <mutex>
#include <stdexcept>

#include "QtPrinting.h"
#include "ViewModelTesting.h"
#include "startup/viewmodel/StartupItemsViewModel.h"
#include "support/Gate.h"

namespace halcyra::startup {
namespace {

using testing::messages;
using testing::settle;

StartupItem loginItem(const std::string& name, bool enabled = true) {
  StartupItem item;
  item.id = "login-/Applications/" + name + ".app";
  item.name = name;
  item.path = "/Applications/" + name + ".app";
  item.isEnabled = enabled;
  return item;
}

StartupItem job(const std::string& label, bool enabled) {
  StartupItem item;
  item.id = "agent-" + label;
  item.name = label + " Agent";
  item.path = "/usr/bin/" + label;
  item.category = StartupItemCategory::launchAgents;
  item.isEnabled = enabled;
  item.label = label;
  item.plistPath = "/Library/LaunchAgents/" + label + ".plist";
  return item;
}

/// A scripted engine: fixed lists, a gate that holds a switch in its command, and switches
/// that fail to start on request.
class FakeStartupService final : public StartupItemsServiceProtocol {
public:
  std::vector<StartupItem> logins{loginItem("Docker"), loginItem("Notes")};
  std::vector<StartupItem> agents{job("sync", true), job("backup", false), job("update", true)};
  testing::Gate gate;
  bool failSwitches = false;
  std::mutex mutex;
  std::vector<std::string> switched;

  std::vector<StartupItem> scanLoginItems() override { return logins; }
  std::vector<StartupItem> scanLaunchAgents(const ProgressCallback& onProgress) override {
    onProgress("Checking sync.plist\u2026");
    return agents;
  }
  void toggleLoginItem(const std::string& name, const std::string&, bool enable) override {
    pass(name, enable);
  }
  std::string toggleLaunchAgent(const std::string& label, const std::string&, bool enable) override {
    pass(label, enable);
    return "Toggle " + label + ": enable=" + (enable ? "true" : "false") + "\n  launchctl ok\n";
  }

private:
  void pass(const std::string& what, bool enable) {
    gate.pass();
    if (failSwitches) throw std::runtime_error("/usr/bin/osascript could not be started");
    std::lock_guard lock(mutex);
    switched.push_back(what + (enable ? " on" : " off"));
  }
};

struct StartupViewModelTest : ::testing::Test {
  std::shared_ptr<FakeStartupService> service = std::make_shared<FakeStartupService>();
  app::DebugLogger logger;
  StartupItemsViewModel viewModel;

  void scanned() {
    viewModel.scan(service, logger);
    ASSERT_TRUE(settle([&] { return viewModel.phase() == StartupItemsViewModel::Phase::results; }));
  }
  const StartupItem& agent(const std::string& label) {
    for (const auto& item : viewModel.launchAgents()) {
      if (item.label == label) return item;
    }
    throw std::logic_error("no such agent");
  }
};

TEST_F(StartupViewModelTest, ScanFillsBothListsAndLogsItsFigures) {
  EXPECT_EQ(viewModel.phase(), StartupItemsViewModel::Phase::idle);
  viewModel.scan(service, logger);
  EXPECT_EQ(viewModel.phaseName(), "scanning");
  EXPECT_EQ(viewModel.scanStatus(), "Scanning login items\u2026");
  scanned();
  EXPECT_EQ(viewModel.loginItems().size(), 2u);
  EXPECT_EQ(viewModel.launchAgents().size(), 3u);
  EXPECT_EQ(viewModel.currentItemsModel()->rowCount(), 2);
  const auto log = messages(logger);
  ASSERT_EQ(log.size(), 2u);
  EXPECT_EQ(log[0], "Startup items scan started");
  EXPECT_EQ(log[1].substr(0, 61), "Startup items scan complete: 2 login items, 3 launch agents i");
  EXPECT_EQ(logger.entries().back().source, core::LogEntry::LogSource::startupItems);
}

TEST_F(StartupViewModelTest, CountsCoverBothListsWhateverCategoryIsInView) {
  scanned();
  EXPECT_EQ(viewModel.enabledCount(), 4);
  EXPECT_EQ(viewModel.totalCount(), 5);
  viewModel.selectCategory(QStringLiteral("launchAgents"));
  EXPECT_EQ(viewModel.currentItems().size(), 3u);
  EXPECT_EQ(viewModel.currentItemsModel()->rowCount(), 3);
  EXPECT_EQ(viewModel.enabledCount(), 4);
  EXPECT_EQ(viewModel.totalCount(), 5);
  EXPECT_EQ(viewModel.loginItemCount(), 2);
  EXPECT_EQ(viewModel.launchAgentCount(), 3);
  viewModel.selectCategory(QStringLiteral("nonsense"));
  EXPECT_EQ(viewModel.selectedCategory(), StartupItemCategory::launchAgents);
}

TEST_F(StartupViewModelTest, RowsShowOnlyPicturesTheWindowCanDrawAsIcons) {
  service->logins[0].icon = "/usr/share/icons/hicolor/48x48/apps/docker.png";
  service->logins[1].icon = "/Applications/Notes.app";
  scanned();
  const auto* model = viewModel.currentItemsModel();
  EXPECT_EQ(model->index(0).data(StartupItemsModel::IconSourceRole).toString(),
            "file:///usr/share/icons/hicolor/48x48/apps/docker.png");
  EXPECT_TRUE(model->index(1).data(StartupItemsModel::IconSourceRole).toString().isEmpty());
  EXPECT_EQ(model->index(1).data(StartupItemsModel::PathRole).toString(), "/Applications/Notes.app");
}

TEST_F(StartupViewModelTest, TheSwitchMovesOnlyWhenTheCommandHasReturned) {
  scanned();
  viewModel.selectCategory(StartupItemCategory::launchAgents);
  service->gate.hold();
  viewModel.toggleItem(agent("backup"), service, logger);
  ASSERT_TRUE(settle([&] { return service->gate.waiting(); }));
  EXPECT_FALSE(agent("backup").isEnabled);
  EXPECT_TRUE(viewModel.togglingItemIds().contains("agent-backup"));
  const auto row = viewModel.currentItemsModel()->index(1);
  EXPECT_EQ(row.data(StartupItemsModel::NameRole).toString(), "backup Agent");
  EXPECT_TRUE(row.data(StartupItemsModel::IsTogglingRole).toBool());

  // A second flip while the first runs does nothing.
  viewModel.toggleItem(agent("backup"), service, logger);
  service->gate.release();
  ASSERT_TRUE(settle([&] { return viewModel.togglingItemIds().empty(); }));
  EXPECT_TRUE(agent("backup").isEnabled);
  EXPECT_TRUE(row.data(StartupItemsModel::IsEnabledRole).toBool());
  EXPECT_FALSE(row.data(StartupItemsModel::IsTogglingRole).toBool());
  EXPECT_EQ(service->switched, (std::vector<std::string>{"backup on"}));
  EXPECT_EQ(viewModel.enabledCount(), 5);
  const auto log = messages(logger);
  EXPECT_EQ(log[log.size() - 2], "Toggling 'backup Agent' (backup) to enabled\u2026");
  EXPECT_EQ(log.back(), "Toggle backup: enable=true\n  launchctl ok");
}

TEST_F(StartupViewModelTest, TheSwitchStaysWhenTheCommandCannotStart) {
  scanned();
  service->failSwitches = true;
  viewModel.toggleItem(viewModel.loginItems().front(), service, logger);
  ASSERT_TRUE(settle([&] { return viewModel.togglingItemIds().empty(); }));
  EXPECT_TRUE(viewModel.loginItems().front().isEnabled);
  EXPECT_EQ(logger.entries().back().level, core::LogEntry::LogLevel::error);
  EXPECT_EQ(messages(logger).back(), "Failed to toggle 'Docker': /usr/bin/osascript could not be started");

  service->failSwitches = false;
  viewModel.toggleItem(viewModel.loginItems().front(), service, logger);
  ASSERT_TRUE(settle([&] { return !viewModel.loginItems().front().isEnabled; }));
  EXPECT_EQ(messages(logger).back(), "Login item 'Docker' disabled");
}

TEST_F(StartupViewModelTest, AJobWithoutLabelOrPropertyListIsNotSwitched) {
  service->agents[0].plistPath.reset();
  scanned();
  viewModel.toggleItem(agent("sync"), service, logger);
  EXPECT_TRUE(viewModel.togglingItemIds().empty());
  EXPECT_EQ(messages(logger).back(), "Toggle failed: missing label or plistPath for 'sync Agent'");
  EXPECT_TRUE(service->switched.empty());
}

TEST_F(StartupViewModelTest, RescanAndBackStartFromTheLoginItems) {
  scanned();
  viewModel.selectCategory(StartupItemCategory::launchAgents);
  // A switch still running while the list is rebuilt lands on the new list's item of that id.
  service->gate.hold();
  viewModel.toggleItem(agent("sync"), service, logger);
  ASSERT_TRUE(settle([&] { return service->gate.waiting(); }));
  viewModel.reset();
  EXPECT_EQ(viewModel.phase(), StartupItemsViewModel::Phase::idle);
  EXPECT_EQ(viewModel.selectedCategory(), StartupItemCategory::loginItems);
  EXPECT_EQ(viewModel.totalCount(), 0);
  EXPECT_TRUE(viewModel.togglingItemIds().empty());
  scanned();
  service->gate.release();
  ASSERT_TRUE(settle([&] { return service->switched.size() == 1; }));
  QCoreApplication::processEvents();
  EXPECT_EQ(viewModel.selectedCategory(), StartupItemCategory::loginItems);
  EXPECT_EQ(viewModel.enabledCount(), 3) << "sync went off";
}

} // namespace
} // namespace halcyra::startup
