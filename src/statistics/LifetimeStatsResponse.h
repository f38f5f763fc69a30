#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string_view>

namespace halcyra::statistics {

/// The figures of every clean this user has reported so far.
struct LifetimeStatsResponse {
  std::int64_t totalCleanups = 0;
  std::int64_t totalSpaceFreedBytes = 0;
  std::int64_t totalFilesCleaned = 0;
  std::optional<std::chrono::system_clock::time_point> lastCleanup;
};

/// The service's answer could not be used: not JSON, a required figure missing or of the
/// wrong type, or a date that is not ISO 8601.
class StatisticsDecodingError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

/// Reads the service's answer strictly: totalCleanups, totalSpaceFreedBytes and
/// totalFilesCleaned must be whole numbers; lastCleanup, when present and not null, an ISO
/// 8601 date and time with a zone ("2024-05-01T09:30:00Z", "...+02:00", fractions allowed).
/// Throws StatisticsDecodingError.
LifetimeStatsResponse decodeLifetimeStats(std::string_view body);

/// An ISO 8601 internet date and time ("2024-05-01T09:30:00.250+02:00") as a moment; none when
/// the text is anything else or the year lies outside 1700 to 2200.
std::optional<std::chrono::system_clock::time_point> parseIso8601(std::string_view text);

} // namespace halcyra::statistics
