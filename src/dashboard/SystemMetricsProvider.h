#pragma once

#include <memory>
#include <optional>
#include <string>

#include "dashboard/SystemStatus.h"
#include "platform/SystemCounters.h"

namespace halcyra::dashboard {

/// Reads the machine's state and turns it into the records of `SystemStatus`, remembering the
/// previous processor and network samples so that usage and rates are deltas between two
/// readings of this provider. Readers never throw: what the system does not give comes back
/// as the neutral values (0, −1, none).
///
/// Not thread-safe: one provider is read from one thread (the window's interface thread, or
/// the command line's only thread).
class SystemMetricsProvider {
public:
  explicit SystemMetricsProvider(std::shared_ptr<platform::SystemCounters> counters);

  std::string cpuModelName();
  int processorCount();
  /// Busy share of all cores since the previous call, in percent; the first call gives 0.
  double cpuUsage();
  MemoryInfo fetchMemory();
  DiskInfo fetchDisk();
  /// Totals now, and rates since the previous call; the first call has rate 0.
  NetworkInfo fetchNetwork();
  BatteryInfo fetchBattery();
  ThermalInfo fetchThermal();

  /// Every reader once, in the dashboard's order, with the health score.
  SystemStatus readStatus();

  /// 100 less one penalty for each of the three figures, by the first threshold it is above;
  /// clamped to 0..100. Temperature, battery and network play no part.
  static int computeHealthScore(const CPUInfo& cpu, const MemoryInfo& memory, const DiskInfo& disk);

private:
  std::shared_ptr<platform::SystemCounters> counters_;
  std::optional<platform::ProcessorTicks> previousTicks_;
  std::optional<platform::NetworkCounters> previousNetworkSnapshot_;
};

} // namespace halcyra::dashboard
