#pragma once

#include <chrono>
#include <stdexcept>
#include <string>

#include "statistics/CleanupEventRequest.h"
#include "statistics/LifetimeStatsResponse.h"

namespace halcyra::statistics {

/// The transfer failed: no connection, a time-out, or an answer too large to be figures.
class StatisticsNetworkError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

/// The statistics service's client: one report of a finished clean, one read of the lifetime
/// figures, both JSON over HTTP(S). Holds no state between calls; each call blocks its thread,
/// so callers run it on one of their own.
class AnalyticsClient {
public:
  /// `baseUrl` ends in the service's "/api" path; `timeout` bounds a whole transfer (the
  /// service's own default is 60 seconds).
  explicit AnalyticsClient(std::string baseUrl, std::chrono::milliseconds timeout = std::chrono::seconds(60));

  /// POSTs the request to <base>/analytics. Never throws: the answer is not read and a failed
  /// transfer is dropped, since statistics must never disturb a clean.
  void sendCleanupEvent(const CleanupEventRequest& request) const noexcept;

  /// GETs <base>/analytics/user/<key>. The HTTP status is not looked at: an error page simply
  /// fails to decode. Throws StatisticsNetworkError or StatisticsDecodingError.
  LifetimeStatsResponse fetchLifetimeStats(const std::string& key) const;

  const std::string& baseUrl() const noexcept { return baseUrl_; }

private:
  std::string baseUrl_;
  std::chrono::milliseconds timeout_;
};

/// `text` with every byte other than letters, digits and "-_~" percent-encoded, so that a key
/// stays one path segment whatever it holds.
std::string percentEncodePathSegment(const std::string& text);

} // namespace halcyra::statistics
