#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/SystemPaths.h"

namespace halcyra::platform {

/// Processor time summed over all processors, in the kernel's ticks.
struct ProcessorTicks {
  std::uint64_t user = 0;
  std::uint64_t system = 0;
  std::uint64_t idle = 0;
};

/// Physical memory in bytes; `used` is none when the kernel would not say.
struct MemoryCounters {
  std::uint64_t total = 0;
  std::optional<std::uint64_t> used;
};

/// The capacity of the volume that holds the home folder, in bytes.
struct VolumeCapacity {
  std::uint64_t total = 0;
  std::uint64_t available = 0; ///< what this user may still write
};

/// Bytes through the machine's real network interfaces, at a moment of system uptime.
struct NetworkCounters {
  std::uint64_t sent = 0;
  std::uint64_t received = 0;
  double uptimeSeconds = 0;
};

/// The machine's own battery, as the power supply reports it; −1 stands for unknown.
struct BatteryReading {
  int percentage = -1;
  bool isCharging = false;
  int minutesToEmpty = -1;
  int minutesToFull = -1;
};

/// The machine's counters: processor, memory, the home volume, network traffic, battery and
/// processor temperature. Each read is one direct look at the system, cheap enough to run on
/// the interface thread every few seconds, and never throws: what cannot be read comes back
/// as none, 0 or −1.
class SystemCounters {
public:
  virtual ~SystemCounters() = default;

  /// The processor's brand text; empty when unknown.
  virtual std::string cpuModelName() = 0;
  /// Processors online now; at least 1.
  virtual int processorCount() = 0;
  virtual std::optional<ProcessorTicks> readProcessorTicks() = 0;
  virtual MemoryCounters readMemory() = 0;
  /// None when the volume cannot be asked.
  virtual std::optional<VolumeCapacity> readHomeVolume() = 0;
  /// Both totals 0 when the interfaces cannot be listed.
  virtual NetworkCounters readNetworkCounters() = 0;
  virtual BatteryReading readBattery() = 0;
  /// The mean of the processor package sensors' plausible values (above 0, below 130 °C), in
  /// degrees Celsius; none without such a sensor.
  virtual std::optional<double> readCpuTemperature() = 0;
};

/// The counters of the running system. On Linux everything is read below `paths.root()`
/// (/proc, /sys, /etc), and the volume asked for is the one of `paths.home()`, so a test can
/// lay out a whole fake machine in a temporary folder.
///
/// Linux: ticks from /proc/stat, the model from /proc/cpuinfo, processors from
/// /sys/devices/system/cpu/online; memory used is MemTotal − MemAvailable; the home volume by
/// statvfs; traffic from /proc/net/dev over the interfaces with a device behind them and the
/// bridges (loopback, tunnels and other virtual links are passed over), timed by /proc/uptime;
/// the first system battery under /sys/class/power_supply; the package sensors of the
/// processor drivers under /sys/class/hwmon (coretemp, k10temp, zenpower, cpu_thermal).
class NativeSystemCounters final : public SystemCounters {
public:
  explicit NativeSystemCounters(SystemPaths paths = SystemPaths::current());

  std::string cpuModelName() override;
  int processorCount() override;
  std::optional<ProcessorTicks> readProcessorTicks() override;
  MemoryCounters readMemory() override;
  std::optional<VolumeCapacity> readHomeVolume() override;
  NetworkCounters readNetworkCounters() override;
  BatteryReading readBattery() override;
  std::optional<double> readCpuTemperature() override;

private:
  SystemPaths paths_;
};

/// The mean of the values that are plausible for a processor (above 0 and below 130 °C);
/// none when no value is.
std::optional<double> meanOfPlausibleTemperatures(const std::vector<double>& celsius);

} // namespace halcyra::platform
