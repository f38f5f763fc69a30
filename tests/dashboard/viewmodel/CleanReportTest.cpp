// A finished clean in the assembled window reports its figures to the statistics service, and
// shows its summary whether or not the service ever answers.

#include <gtest/gtest.h>

#include <condition_variable>
#include <mutex>
#include <thread>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QSettings>
#include <QTemporaryDir>
#include <httplib.h>
#include <nlohmann/json.hpp>

#include "FakeCleanService.h"
#include "ViewModelTesting.h"
#include "app/HalcyraApp.h"

namespace {

using halcyra::clean::CleanCategory;
using halcyra::clean::CleanItem;
using halcyra::clean::CleanViewModel;
using halcyra::statistics::StatisticsConfig;
using halcyra::statistics::StatisticsReporter;

/// Accepts reports on the loopback address and keeps their bodies.
class ReportSink {
public:
  ReportSink() {
    server_.Post("/api/analytics", [this](const httplib::Request& request, httplib::Response&) {
      std::lock_guard lock(mutex_);
      bodies_.push_back(request.body);
      arrived_.notify_all();
    });
    port_ = server_.bind_to_any_port("127.0.0.1");
    thread_ = std::thread([this] { server_.listen_after_bind(); });
  }
  ~ReportSink() {
    server_.stop();
    thread_.join();
  }
  std::string base() const { return "http://127.0.0.1:" + std::to_string(port_) + "/api"; }
  std::vector<std::string> bodies() {
    std::unique_lock lock(mutex_);
    arrived_.wait_for(lock, std::chrono::seconds(20), [&] { return !bodies_.empty(); });
    return bodies_;
  }

private:
  httplib::Server server_;
  int port_ = 0;
  std::thread thread_;
  std::mutex mutex_;
  std::condition_variable arrived_;
  std::vector<std::string> bodies_;
};

class CleanReportTest : public ::testing::Test {
protected:
  /// A window whose cleaner finds one category and frees `freed` bytes in `items` items.
  std::unique_ptr<halcyra::app::HalcyraApp> window(const std::string& base, std::int64_t freed, int items) {
    service->result = {freed, items, 0.3};
    CleanCategory caches;
    caches.id = "caches";
    caches.name = "User Caches";
    caches.section = "User";
    caches.items.push_back(CleanItem{"caches-0", "/home/u/.cache/x", 4096, true});
    caches.isSelected = true;
    service->categories = {caches};
    halcyra::app::HalcyraApp::Options options;
    options.defaults = std::make_unique<QSettings>(settings.filePath("defaults.ini"), QSettings::IniFormat);
    options.cleanService = service;
    options.statistics = std::make_shared<StatisticsReporter>(StatisticsConfig{base, "build-key"},
                                                              [] { return std::optional<std::string>("machine-1"); },
                                                              "v0.1.0");
    return std::make_unique<halcyra::app::HalcyraApp>(std::move(options));
  }

  void cleanToSummary(halcyra::app::HalcyraApp& app) {
    auto& cleaner = app.cleanViewModel();
    cleaner.scan(service, app.debugLogger());
    ASSERT_TRUE(halcyra::testing::settle([&] { return cleaner.phase() == CleanViewModel::Phase::preview; }));
    cleaner.cleanAll();
    cleaner.confirmClean(service, app.appState(), app.debugLogger());
    ASSERT_TRUE(halcyra::testing::settle([&] { return cleaner.phase() == CleanViewModel::Phase::summary; }));
  }

  QTemporaryDir settings;
  std::shared_ptr<halcyra::testing::FakeCleanService> service = std::make_shared<halcyra::testing::FakeCleanService>();
};

TEST_F(CleanReportTest, FinishedCleanReportsItsFigures) {
  ReportSink sink;
  auto app = window(sink.base(), 4096, 1);
  cleanToSummary(*app);
  const auto bodies = sink.bodies();
  ASSERT_EQ(bodies.size(), 1u);
  const auto report = nlohmann::json::parse(bodies[0]);
  EXPECT_EQ(report["apiKey"], "build-key");
  EXPECT_EQ(report["machineId"], "machine-1");
  EXPECT_EQ(report["filesCleanedCount"], 1);
  EXPECT_EQ(report["spaceFreedBytes"], 4096);
  EXPECT_EQ(report["appVersion"], "v0.1.0");
}

TEST_F(CleanReportTest, SummaryShowsThoughTheServiceNeverAnswers) {
  // Connections queue on a listening socket that is never accepted from.
  const int silent = ::socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof address;
  ASSERT_EQ(::bind(silent, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  ::listen(silent, 4);
  ::getsockname(silent, reinterpret_cast<sockaddr*>(&address), &length);

  auto app = window("http://127.0.0.1:" + std::to_string(ntohs(address.sin_port)) + "/api", 0, 0);
  cleanToSummary(*app);
  EXPECT_EQ(app->cleanViewModel().itemsCleaned(), 0);
  EXPECT_TRUE(app->appState().lastCleanDate().isValid());
  app.reset(); // the window goes without waiting for the report
  ::close(silent);
}

} // namespace
