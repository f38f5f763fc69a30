#pragma once

#include <functional>
#include <memory>

#include "DuplicatesShots.h" // ShotTools, what the picture run lends each tool
#include "app/HalcyraApp.h"
#include "platform/SystemCounters.h"
#include "statistics/StatisticsReporter.h"

namespace halcyra::app {

/// A machine for the dashboard's pictures whose figures the run sets between readings.
class ScriptedSystemCounters final : public platform::SystemCounters {
public:
  std::uint64_t busyStep = 30;     ///< processor ticks added per reading
  std::uint64_t idleStep = 70;
  platform::MemoryCounters memory{16ull << 30, 7ull << 30};
  platform::VolumeCapacity volume{494'380'000'000, 212'640'000'000};
  std::uint64_t sendStep = 180'000;     ///< bytes per second
  std::uint64_t receiveStep = 2'450'000;
  platform::BatteryReading battery{76, false, 212, -1};
  std::optional<double> temperature = 52.4;
  bool broken = false;

  std::string cpuModelName() override { return "Apple M2 Pro"; }
  int processorCount() override { return 10; }
  std::optional<platform::ProcessorTicks> readProcessorTicks() override;
  platform::MemoryCounters readMemory() override { return memory; }
  std::optional<platform::VolumeCapacity> readHomeVolume() override { return volume; }
  platform::NetworkCounters readNetworkCounters() override;
  platform::BatteryReading readBattery() override { return battery; }
  std::optional<double> readCpuTemperature() override { return temperature; }

private:
  platform::ProcessorTicks ticks_;
  platform::NetworkCounters network_;
};

/// Lifetime figures without a service.
class ScriptedStatistics final : public statistics::StatisticsReporter {
public:
  ScriptedStatistics() : StatisticsReporter(std::nullopt) {}
  std::optional<statistics::LifetimeStatsResponse> answer;

  bool isEnabled() const noexcept override { return true; }
  bool reportClean(int, std::int64_t) const override { return false; }
  std::optional<statistics::LifetimeStatsResponse> fetchLifetimeStats() const override { return answer; }
};

/// Shows the dashboard and draws it: before its first reading, in each health band, with the
/// battery charging and running down, on a desktop without battery or temperature, with and
/// without the lifetime card, and with the error banner. `shotAtOnce` draws without letting
/// events run first.
void shootDashboard(HalcyraApp& app, ScriptedSystemCounters& counters, ScriptedStatistics& statistics,
                    const ShotTools& tools, const std::function<void(const QString&)>& shotAtOnce);

} // namespace halcyra::app
