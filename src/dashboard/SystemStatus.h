#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <nlohmann/json_fwd.hpp>

namespace halcyra::dashboard {

/// The processor: busy share of all cores in percent (0 to 100), processors online, brand.
struct CPUInfo {
  double usage = 0;
  int cores = 0;
  std::string model;
};

/// Capacity, use and what is left, in bytes; `usagePercent` is the used share in percent.
/// Memory and the home volume share the shape.
struct MemoryInfo {
  std::uint64_t total = 0;
  std::uint64_t used = 0;
  std::uint64_t free = 0;
  double usagePercent = 0;
};
using DiskInfo = MemoryInfo;

/// The processor's temperature in degrees Celsius; none when no sensor gave a value.
struct ThermalInfo {
  std::optional<double> cpuTemperature;
};

/// Traffic through the real interfaces: totals as the counters stand, and bytes per second
/// since the reading before (0 for the first).
struct NetworkInfo {
  std::uint64_t bytesSent = 0;
  std::uint64_t bytesReceived = 0;
  std::uint64_t sendRate = 0;
  std::uint64_t receiveRate = 0;
};

/// The battery: charge in percent, −1 without one; minutes to full while charging, else to
/// empty, −1 when unknown.
struct BatteryInfo {
  int percentage = -1;
  bool isCharging = false;
  int minutesRemaining = -1;
};

/// One snapshot of the whole machine.
struct SystemStatus {
  CPUInfo cpu;
  MemoryInfo memory;
  DiskInfo disk;
  ThermalInfo thermal;
  NetworkInfo network;
  BatteryInfo battery;
  int healthScore = 100;
};

/// The snapshot with its records' keys (snake case where a name has several words); a missing
/// temperature is null.
nlohmann::json toJson(const SystemStatus& status);

/// "Good" above 70, "Fair" above 40, else "Poor".
std::string healthWord(int score);

} // namespace halcyra::dashboard
