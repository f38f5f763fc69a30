#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <thread>

#include <QCoreApplication>
#include <QSettings>
#include <QTemporaryDir>
#include <httplib.h>

#include "QtPrinting.h"
#include "ViewModelTesting.h"
#include "dashboard/viewmodel/DashboardViewModel.h"

namespace {

using halcyra::app::AppState;
using halcyra::app::DebugLogger;
using halcyra::app::NavigationItem;
using halcyra::dashboard::DashboardViewModel;
using halcyra::dashboard::SystemMetricsProvider;
using halcyra::testing::messages;
using halcyra::testing::settle;

/// A machine whose counters the test sets; it counts how often it was read.
class ScriptedCounters final : public halcyra::platform::SystemCounters {
public:
  int reads = 0;
  std::uint64_t busyTicks = 0;
  std::optional<double> temperature = 45.4;
  bool broken = false;

  std::string cpuModelName() override { return "Test CPU"; }
  int processorCount() override { return 8; }
  std::optional<halcyra::platform::ProcessorTicks> readProcessorTicks() override {
    ++reads;
    if (broken) throw std::runtime_error("counters broke");
    busyTicks += 30;
    return halcyra::platform::ProcessorTicks{busyTicks, 0, static_cast<std::uint64_t>(reads) * 70};
  }
  halcyra::platform::MemoryCounters readMemory() override { return {1000, 500}; }
  std::optional<halcyra::platform::VolumeCapacity> readHomeVolume() override {
    return halcyra::platform::VolumeCapacity{1000, 240};
  }
  halcyra::platform::NetworkCounters readNetworkCounters() override {
    return {static_cast<std::uint64_t>(reads) * 1000, 0, static_cast<double>(reads)};
  }
  halcyra::platform::BatteryReading readBattery() override { return {}; }
  std::optional<double> readCpuTemperature() override { return temperature; }
};

class DashboardViewModelTest : public ::testing::Test {
protected:
  DashboardViewModelTest()
      : counters(std::make_shared<ScriptedCounters>()), provider(std::make_shared<SystemMetricsProvider>(counters)),
        viewModel(std::make_unique<DashboardViewModel>()) {}

  std::shared_ptr<ScriptedCounters> counters;
  std::shared_ptr<SystemMetricsProvider> provider;
  DebugLogger logger;
  std::unique_ptr<DashboardViewModel> viewModel;
};

TEST_F(DashboardViewModelTest, FirstReadingComesAtOnceAfterRefreshingShowsAndIsLogged) {
  viewModel->startPolling(provider, logger);
  // Loading is on before the reading, so the screen can draw "Refreshing…" first.
  EXPECT_TRUE(viewModel->isLoading());
  EXPECT_FALSE(viewModel->hasStatus());
  EXPECT_TRUE(viewModel->isPolling());
  ASSERT_TRUE(settle([&] { return viewModel->hasStatus(); }));
  EXPECT_FALSE(viewModel->isLoading());

  const auto& status = *viewModel->status();
  EXPECT_EQ(status.cpu.usage, 0); // nothing to compare the first ticks with
  EXPECT_EQ(status.cpu.cores, 8);
  EXPECT_EQ(status.network.sendRate, 0u);
  EXPECT_EQ(status.healthScore, 85); // disk at 76 %
  EXPECT_EQ(viewModel->status()->thermal.cpuTemperature, 45.4);
  EXPECT_EQ(messages(logger), (std::vector<std::string>{"Dashboard polling started (interval: 5s)",
                                                        "Status: CPU 0%, Memory 50%, Disk 76%, Temp 45°C, Health 85"}));

  // A reading of its own (the Refresh command, the banner's retry) compares with the last.
  counters->temperature.reset();
  viewModel->fetchStatus(provider, logger);
  ASSERT_TRUE(settle([&] { return messages(logger).size() == 3; }));
  EXPECT_EQ(messages(logger).back(), "Status: CPU 30%, Memory 50%, Disk 76%, Temp N/A, Health 85");
  EXPECT_EQ(viewModel->status()->network.sendRate, 1000u);
  EXPECT_FALSE(viewModel->statusMap().value("hasTemperature").toBool());
}

TEST_F(DashboardViewModelTest, OneLoopAtMostAndNoneOnceTheScreenGoes) {
  viewModel->setPollInterval(10);
  viewModel->startPolling(provider, logger);
  viewModel->startPolling(provider, logger); // replaces the first loop
  ASSERT_TRUE(settle([&] { return counters->reads >= 4; }));
  viewModel->stopPolling();
  EXPECT_FALSE(viewModel->isPolling());
  const int reads = counters->reads;
  settle([] { return false; }, 200);
  EXPECT_EQ(counters->reads, reads); // the replaced loop does not run on either

  // The screen goes with its view model; a reading already asked for is dropped with it.
  auto another = std::make_unique<DashboardViewModel>();
  another->setPollInterval(10);
  another->startPolling(provider, logger);
  another.reset();
  settle([] { return false; }, 200);
  EXPECT_EQ(counters->reads, reads);

  // A new appearance starts over with a reading at once, against the provider's last sample.
  DashboardViewModel back;
  back.startPolling(provider, logger);
  ASSERT_TRUE(settle([&] { return back.hasStatus(); }));
  EXPECT_GT(back.status()->cpu.usage, 0);
}

TEST_F(DashboardViewModelTest, FailedReadingShowsTheBannerAndTheNextOneClearsIt) {
  counters->broken = true;
  viewModel->fetchStatus(provider, logger);
  ASSERT_TRUE(settle([&] { return !viewModel->errorText().isEmpty(); }));
  EXPECT_EQ(viewModel->errorText(), "counters broke");
  EXPECT_FALSE(viewModel->isLoading());
  EXPECT_FALSE(viewModel->hasStatus());

  counters->broken = false;
  viewModel->fetchStatus(provider, logger);
  EXPECT_TRUE(viewModel->errorText().isEmpty());
  ASSERT_TRUE(settle([&] { return viewModel->hasStatus(); }));
}

TEST_F(DashboardViewModelTest, QuickCleanAsksForAScanBeforeGoingToTheCleaner) {
  QTemporaryDir folder;
  AppState state(std::make_unique<QSettings>(folder.filePath("defaults.ini"), QSettings::IniFormat));
  std::vector<std::string> writes;
  QObject::connect(&state, &AppState::shouldAutoScanChanged, [&] { writes.push_back("shouldAutoScan"); });
  QObject::connect(&state, &AppState::selectedNavItemChanged, [&] {
    writes.push_back(state.shouldAutoScan() ? "selectedNavItem after the flag" : "selectedNavItem first");
  });
  viewModel->quickClean(&state);
  EXPECT_EQ(writes, (std::vector<std::string>{"shouldAutoScan", "selectedNavItem after the flag"}));
  EXPECT_EQ(state.selectedNavItem(), NavigationItem::clean);
}

TEST(DashboardCards, HealthBandsBatteryColoursAndBars) {
  const QStringList red{"#ff7366", "#e64d80"}, amber{"#ffcc4d", "#ff994d"}, green{"#4dcc99", "#33b3cc"};
  EXPECT_EQ(DashboardViewModel::healthGradient(0), red);
  EXPECT_EQ(DashboardViewModel::healthGradient(40), red);
  EXPECT_EQ(DashboardViewModel::healthWord(40), "Poor");
  EXPECT_EQ(DashboardViewModel::healthGradient(41), amber);
  EXPECT_EQ(DashboardViewModel::healthWord(41), "Fair");
  EXPECT_EQ(DashboardViewModel::healthGradient(70), amber);
  EXPECT_EQ(DashboardViewModel::healthGradient(71), green);
  EXPECT_EQ(DashboardViewModel::healthWord(71), "Good");

  EXPECT_EQ(DashboardViewModel::batteryColorName(50, false), "orange");
  EXPECT_EQ(DashboardViewModel::batteryColorName(51, false), "green");
  EXPECT_EQ(DashboardViewModel::batteryColorName(21, false), "orange");
  EXPECT_EQ(DashboardViewModel::batteryColorName(20, false), "red");
  EXPECT_EQ(DashboardViewModel::batteryColorName(10, true), "green");

  EXPECT_EQ(DashboardViewModel::barFraction(-1), 0.0);
  EXPECT_EQ(DashboardViewModel::barFraction(42), 0.42);
  EXPECT_EQ(DashboardViewModel::barFraction(1536), 1.0);
  EXPECT_EQ(DashboardViewModel::formatNetworkRate(1'048'575), "1024 KB/s");
}

/// A statistics service on the loopback address that answers the lifetime figures with `answer`.
class LifetimeService {
public:
  explicit LifetimeService(std::string answer) : answer_(std::move(answer)) {
    server_.Get(R"(/api/analytics/user/(.+))", [this](const httplib::Request&, httplib::Response& response) {
      ++asked;
      response.set_content(answer_, "application/json");
    });
    port_ = server_.bind_to_any_port("127.0.0.1");
    thread_ = std::thread([this] { server_.listen_after_bind(); });
  }
  ~LifetimeService() {
    server_.stop();
    thread_.join();
  }
  std::shared_ptr<halcyra::statistics::StatisticsReporter> reporter() const {
    return std::make_shared<halcyra::statistics::StatisticsReporter>(
        halcyra::statistics::StatisticsConfig{"http://127.0.0.1:" + std::to_string(port_) + "/api", "key"},
        [] { return std::optional<std::string>("machine"); });
  }
  std::atomic<int> asked = 0;

private:
  std::string answer_;
  httplib::Server server_;
  int port_ = 0;
  std::thread thread_;
};

TEST(DashboardLifetimeStats, CardOnlyFromTheFirstCountedClean) {
  DashboardViewModel viewModel;
  LifetimeService counted(R"({"totalCleanups":3,"totalSpaceFreedBytes":5000000000,"totalFilesCleaned":90})");
  viewModel.fetchLifetimeStats(counted.reporter());
  ASSERT_TRUE(settle([&] { return viewModel.lifetimeStats().has_value(); }));
  EXPECT_TRUE(viewModel.showsLifetimeStats());
  EXPECT_EQ(viewModel.lifetimeStatsMap().value("totalSpaceFreedBytes").toDouble(), 5e9);

  // An answer with no clean yet came, but hides the card.
  DashboardViewModel fresh;
  LifetimeService none(R"({"totalCleanups":0,"totalSpaceFreedBytes":0,"totalFilesCleaned":0,"lastCleanup":null})");
  fresh.fetchLifetimeStats(none.reporter());
  ASSERT_TRUE(settle([&] { return fresh.lifetimeStats().has_value(); }));
  EXPECT_FALSE(fresh.showsLifetimeStats());

  // A date that is not ISO 8601 fails the whole answer: no figures, no card, nothing said.
  DashboardViewModel confused;
  LifetimeService bad(R"({"totalCleanups":3,"totalSpaceFreedBytes":1,"totalFilesCleaned":1,"lastCleanup":"May 1st"})");
  DebugLogger logger;
  confused.fetchLifetimeStats(bad.reporter());
  ASSERT_TRUE(settle([&] { return bad.asked == 1; }));
  settle([] { return false; }, 100);
  EXPECT_FALSE(confused.lifetimeStats().has_value());
  EXPECT_FALSE(confused.showsLifetimeStats());

  // A build without a key asks nobody.
  viewModel.fetchLifetimeStats(std::make_shared<halcyra::statistics::StatisticsReporter>(std::nullopt));
  settle([] { return false; }, 50);
  EXPECT_EQ(counted.asked, 1);
}

} // namespace
