#include "dashboard/DashboardFormat.h"

#include <fmt/format.h>

namespace halcyra::dashboard {

std::string formatTimeRemaining(int minutes, bool charging) {
  const std::string time = minutes < 60 ? fmt::format("{}m", minutes) : fmt::format("{}h {}m", minutes / 60, minutes % 60);
  return time + (charging ? " until full" : " remaining");
}

std::string formatNetworkRate(std::uint64_t bytesPerSecond) {
  const double kilobytes = static_cast<double>(bytesPerSecond) / 1024.0;
  if (kilobytes < 1024) return fmt::format("{:.0f} KB/s", kilobytes);
  return fmt::format("{:.1f} MB/s", kilobytes / 1024.0);
}

} // namespace halcyra::dashboard
