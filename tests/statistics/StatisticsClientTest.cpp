// The statistics client against a real HTTP server on the loopback address, its strict reading
// of the lifetime figures, the reporter's silence without a key, and the machine identifier.

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <gtest/gtest.h>
#include <httplib.h>

#include "platform/MachineIdentifier.h"
#include "statistics/AnalyticsClient.h"
#include "statistics/StatisticsReporter.h"
#include "support/TempDir.h"

namespace {

using namespace halcyra::statistics;
using namespace std::chrono_literals;

struct Received {
  std::string method;
  std::string path;
  std::string contentType;
  std::string body;
};

/// A statistics service on 127.0.0.1 with the two endpoints; it records every request.
class LoopbackService {
public:
  LoopbackService() {
    server_.Post("/api/analytics", [this](const httplib::Request& request, httplib::Response& response) {
      record(request);
      response.status = postStatus;
    });
    server_.Get(R"(/api/analytics/user/(.+))", [this](const httplib::Request& request, httplib::Response& response) {
      record(request);
      response.status = getStatus;
      response.set_content(answer, getStatus == 200 ? "application/json" : "text/html");
    });
    port_ = server_.bind_to_any_port("127.0.0.1");
    thread_ = std::thread([this] { server_.listen_after_bind(); });
    // Connections queue on the bound socket from here on, so nothing needs to wait for the
    // accepting loop to start.
  }
  ~LoopbackService() {
    server_.stop();
    thread_.join();
  }

  std::string base() const { return "http://127.0.0.1:" + std::to_string(port_) + "/api"; }

  /// The requests so far, once there are at least `count` (or after a generous deadline, so a
  /// broken client fails the test instead of hanging it).
  std::vector<Received> requests(std::size_t count = 1) {
    std::unique_lock lock(mutex_);
    arrived_.wait_for(lock, 20s, [&] { return received_.size() >= count; });
    return received_;
  }

  int postStatus = 201;
  int getStatus = 200;
  std::string answer;

private:
  void record(const httplib::Request& request) {
    std::lock_guard lock(mutex_);
    received_.push_back({request.method, request.path, request.get_header_value("Content-Type"), request.body});
    arrived_.notify_all();
  }

  httplib::Server server_;
  int port_ = 0;
  std::thread thread_;
  std::mutex mutex_;
  std::condition_variable arrived_;
  std::vector<Received> received_;
};

/// A port that takes connections (the kernel completes them) and never says a word.
class SilentPort {
public:
  SilentPort() {
    fd_ = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    ::bind(fd_, reinterpret_cast<sockaddr*>(&address), sizeof address);
    ::listen(fd_, 16);
    ::getsockname(fd_, reinterpret_cast<sockaddr*>(&address), &length);
    port_ = ntohs(address.sin_port);
  }
  ~SilentPort() { ::close(fd_); }
  std::string base() const { return "http://127.0.0.1:" + std::to_string(port_) + "/api"; }

private:
  int fd_ = -1;
  int port_ = 0;
};

const CleanupEventRequest kRequest{"key-123", "0123456789abcdef0123456789abcdef", 17, 11'930'000'000, "v1.2.0"};

TEST(AnalyticsClient, ReportIsOneJsonPostToAnalytics) {
  LoopbackService service;
  AnalyticsClient(service.base()).sendCleanupEvent(kRequest);
  const auto requests = service.requests();
  ASSERT_EQ(requests.size(), 1u);
  EXPECT_EQ(requests[0].method, "POST");
  EXPECT_EQ(requests[0].path, "/api/analytics");
  EXPECT_EQ(requests[0].contentType, "application/json");
  // The keys in their order, the figures as numbers.
  EXPECT_EQ(requests[0].body, R"({"apiKey":"key-123","machineId":"0123456789abcdef0123456789abcdef",)"
                              R"("filesCleanedCount":17,"spaceFreedBytes":11930000000,"appVersion":"v1.2.0"})");

  // An error status or no service at all raises nothing.
  service.postStatus = 500;
  AnalyticsClient(service.base() + "/").sendCleanupEvent(CleanupEventRequest{"k", "m", 0, 0, "v1"});
  EXPECT_EQ(service.requests(2).back().body,
            R"({"apiKey":"k","machineId":"m","filesCleanedCount":0,"spaceFreedBytes":0,"appVersion":"v1"})");
  AnalyticsClient("http://127.0.0.1:1/api", 2s).sendCleanupEvent(kRequest);
}

TEST(AnalyticsClient, LifetimeFiguresComeFromTheKeysOwnPath) {
  LoopbackService service;
  service.answer = R"({"totalCleanups":12,"totalSpaceFreedBytes":48200000000,"totalFilesCleaned":3051,)"
                   R"("lastCleanup":"2024-05-01T09:30:00Z"})";
  const auto stats = AnalyticsClient(service.base()).fetchLifetimeStats("key-123");
  EXPECT_EQ(stats.totalCleanups, 12);
  EXPECT_EQ(stats.totalSpaceFreedBytes, 48'200'000'000);
  EXPECT_EQ(stats.totalFilesCleaned, 3051);
  ASSERT_TRUE(stats.lastCleanup.has_value());
  EXPECT_EQ(std::chrono::system_clock::to_time_t(*stats.lastCleanup), 1714555800);
  EXPECT_EQ(service.requests()[0].method, "GET");
  EXPECT_EQ(service.requests()[0].path, "/api/analytics/user/key-123");

  // A key stays one path segment whatever it holds.
  EXPECT_EQ(percentEncodePathSegment("../a b/c?d#e"), "%2E%2E%2Fa%20b%2Fc%3Fd%23e");

  // The status is not looked at: an error page fails because it is not figures.
  service.getStatus = 404;
  service.answer = "<html><body>Not Found</body></html>";
  EXPECT_THROW(AnalyticsClient(service.base()).fetchLifetimeStats("key-123"), StatisticsDecodingError);
  // An error status with figures in it still gives the figures.
  service.getStatus = 503;
  service.answer = R"({"totalCleanups":1,"totalSpaceFreedBytes":2,"totalFilesCleaned":3})";
  EXPECT_EQ(AnalyticsClient(service.base()).fetchLifetimeStats("key-123").totalCleanups, 1);

  EXPECT_THROW(AnalyticsClient("http://127.0.0.1:1/api", 2s).fetchLifetimeStats("k"), StatisticsNetworkError);
}

TEST(AnalyticsClient, ServiceThatAcceptsAndNeverAnswers) {
  SilentPort silent;
  EXPECT_THROW(AnalyticsClient(silent.base(), 300ms).fetchLifetimeStats("k"), StatisticsNetworkError);
  AnalyticsClient(silent.base(), 300ms).sendCleanupEvent(kRequest); // returns, raising nothing

  // The reporter hands the report to a thread of its own with the full time-out, and the call
  // returns without waiting for it.
  StatisticsReporter reporter(StatisticsConfig{silent.base(), "k"}, [] { return std::optional<std::string>("m"); });
  EXPECT_TRUE(reporter.reportClean(3, 4096));
}

TEST(LifetimeStatsDecoding, OptionalDateAndStrictFigures) {
  const std::string figures = R"("totalCleanups":2,"totalSpaceFreedBytes":9000000000,"totalFilesCleaned":40)";
  EXPECT_FALSE(decodeLifetimeStats("{" + figures + "}").lastCleanup.has_value());
  EXPECT_FALSE(decodeLifetimeStats("{" + figures + R"(,"lastCleanup":null})").lastCleanup.has_value());
  EXPECT_EQ(decodeLifetimeStats("{" + figures + R"(,"unknown":[1,2]})").totalSpaceFreedBytes, 9'000'000'000);

  const auto at = [&](const std::string& date) {
    return std::chrono::system_clock::to_time_t(
        *decodeLifetimeStats("{" + figures + R"(,"lastCleanup":")" + date + "\"}").lastCleanup);
  };
  EXPECT_EQ(at("2024-05-01T09:30:00Z"), 1714555800);
  EXPECT_EQ(at("2024-05-01T11:30:00+02:00"), 1714555800);
  EXPECT_EQ(at("2024-05-01T04:00:00-05:30"), 1714555800);
  EXPECT_EQ(at("2024-05-01T09:30:00.999Z"), 1714555800);

  for (const std::string bad : {R"({"totalSpaceFreedBytes":1,"totalFilesCleaned":1})",
                                R"({"totalCleanups":"2","totalSpaceFreedBytes":1,"totalFilesCleaned":1})",
                                R"({"totalCleanups":2.5,"totalSpaceFreedBytes":1,"totalFilesCleaned":1})",
                                R"({"totalCleanups":2,"totalSpaceFreedBytes":null,"totalFilesCleaned":1})",
                                R"({"totalCleanups":2,"totalSpaceFreedBytes":1,"totalFilesCleaned":true})",
                                R"({"totalCleanups":2,"totalSpaceFreedBytes":18446744073709551615,"totalFilesCleaned":1})",
                                R"([1,2,3])", "", "{", "null"}) {
    EXPECT_THROW(decodeLifetimeStats(bad), StatisticsDecodingError) << bad;
  }
  for (const std::string date : {"2024-05-01 09:30:00Z", "2024-05-01T09:30:00", "yesterday", "2024-13-01T00:00:00Z",
                                 "2024-02-30T00:00:00Z", "2024-05-01T24:00:00Z", "2024-05-01T09:30:00+0200",
                                 "2024-05-01T09:30:00.Z", "2024-05-01T09:30:00Zjunk", "1714555800",
                                 "1360-05-01T09:30:00Z"}) {
    EXPECT_THROW(decodeLifetimeStats("{" + figures + R"(,"lastCleanup":")" + date + "\"}"), StatisticsDecodingError)
        << date;
  }
  EXPECT_THROW(decodeLifetimeStats("{" + figures + R"(,"lastCleanup":1714555800})"), StatisticsDecodingError);
}

TEST(StatisticsReporter, BuildWithoutKeySendsAndFetchesNothing) {
  LoopbackService service;
  StatisticsReporter silent(std::nullopt, [] { return std::optional<std::string>("m"); });
  EXPECT_FALSE(silent.isEnabled());
  EXPECT_FALSE(silent.reportClean(1, 1));
  EXPECT_FALSE(silent.fetchLifetimeStats().has_value());

  // A machine without an identifier never reports, though it may read the figures.
  service.answer = R"({"totalCleanups":0,"totalSpaceFreedBytes":0,"totalFilesCleaned":0})";
  StatisticsReporter anonymous(StatisticsConfig{service.base(), "key"}, [] { return std::optional<std::string>(); });
  EXPECT_FALSE(anonymous.reportClean(1, 1));
  EXPECT_EQ(anonymous.fetchLifetimeStats()->totalCleanups, 0);
  const auto requests = service.requests();
  ASSERT_EQ(requests.size(), 1u);
  EXPECT_EQ(requests[0].method, "GET");

  // A build made to report sends a clean that removed nothing all the same.
  StatisticsReporter reporting(StatisticsConfig{service.base(), "key"}, [] { return std::optional<std::string>("id"); },
                               "v9.9.9");
  EXPECT_TRUE(reporting.reportClean(0, 0));
  EXPECT_EQ(service.requests(2).back().body,
            R"({"apiKey":"key","machineId":"id","filesCleanedCount":0,"spaceFreedBytes":0,"appVersion":"v9.9.9"})");
}

#ifndef __APPLE__
TEST(MachineIdentifier, LinuxMachineIdOrNothing) {
  halcyra::testing::TempDir root;
  const halcyra::platform::SystemPaths paths(root.path(), root.path());
  EXPECT_FALSE(halcyra::platform::MachineIdentifier::hardwareUUID(paths).has_value());
  root.file("etc/machine-id", "uninitialized\n"); // first boot, not written yet
  EXPECT_FALSE(halcyra::platform::MachineIdentifier::hardwareUUID(paths).has_value());
  root.file("etc/machine-id", "0123456789ABCDEF0123456789abcdef\n");
  EXPECT_FALSE(halcyra::platform::MachineIdentifier::hardwareUUID(paths).has_value());
  root.file("etc/machine-id", "0123456789abcdef0123456789abcdef\n");
  EXPECT_EQ(halcyra::platform::MachineIdentifier::hardwareUUID(paths), "0123456789abcdef0123456789abcdef");
}
#endif

} // namespace
