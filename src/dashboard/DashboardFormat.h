#pragma once

#include <cstdint>
#include <string>

namespace halcyra::dashboard {

/// "59m remaining", "2h 5m until full": minutes below an hour alone, otherwise hours and the
/// minutes left over.
std::string formatTimeRemaining(int minutes, bool charging);

/// A rate in kilobytes per second ("%.0f KB/s") below 1024 KB/s, else megabytes ("%.1f MB/s");
/// never in bytes, so 0 reads "0 KB/s". The test is made on the unrounded value.
std::string formatNetworkRate(std::uint64_t bytesPerSecond);

} // namespace halcyra::dashboard
