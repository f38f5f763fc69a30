#include "dashboard/SystemMetricsProvider.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace halcyra::dashboard {
namespace {

// A counter that fell (reset, wrapped, or an interface re-created) started again from 0, so
// its present value is what passed since.
std::uint64_t delta(std::uint64_t now, std::uint64_t before) { return now >= before ? now - before : now; }

// Processor tick counters can step back on some virtual machines; such a step adds nothing.
std::uint64_t forward(std::uint64_t now, std::uint64_t before) { return now >= before ? now - before : 0; }

double percentOf(std::uint64_t part, std::uint64_t whole) {
  return whole == 0 ? 0.0 : static_cast<double>(part) / static_cast<double>(whole) * 100.0;
}

int penalty(double figure, std::initializer_list<std::pair<double, int>> table) {
  for (const auto& [threshold, points] : table) {
    if (figure > threshold) return points;
  }
  return 0;
}

} // namespace

SystemMetricsProvider::SystemMetricsProvider(std::shared_ptr<platform::SystemCounters> counters)
    : counters_(std::move(counters)) {}

std::string SystemMetricsProvider::cpuModelName() { return counters_->cpuModelName(); }

int SystemMetricsProvider::processorCount() { return counters_->processorCount(); }

double SystemMetricsProvider::cpuUsage() {
  const auto ticks = counters_->readProcessorTicks();
  if (!ticks) return 0;
  const auto previous = std::exchange(previousTicks_, ticks);
  if (!previous) return 0;
  const std::uint64_t busy = forward(ticks->user, previous->user) + forward(ticks->system, previous->system);
  const std::uint64_t total = busy + forward(ticks->idle, previous->idle);
  if (total < 1) return 0;
  return std::min(100.0, static_cast<double>(busy) / static_cast<double>(total) * 100.0);
}

MemoryInfo SystemMetricsProvider::fetchMemory() {
  const auto counters = counters_->readMemory();
  MemoryInfo info;
  info.total = counters.total;
  if (!counters.used) {
    info.free = info.total;
    return info;
  }
  info.used = *counters.used;
  info.free = info.used > info.total ? 0 : info.total - info.used;
  info.usagePercent = percentOf(info.used, info.total);
  return info;
}

DiskInfo SystemMetricsProvider::fetchDisk() {
  DiskInfo info;
  const auto volume = counters_->readHomeVolume();
  if (!volume) return info;
  info.total = volume->total;
  info.free = volume->available;
  info.used = info.free < info.total ? info.total - info.free : 0;
  info.usagePercent = percentOf(info.used, info.total);
  return info;
}

NetworkInfo SystemMetricsProvider::fetchNetwork() {
  const auto now = counters_->readNetworkCounters();
  NetworkInfo info;
  info.bytesSent = now.sent;
  info.bytesReceived = now.received;
  if (previousNetworkSnapshot_) {
    const double elapsed = now.uptimeSeconds - previousNetworkSnapshot_->uptimeSeconds;
    if (elapsed > 0) {
      info.sendRate = static_cast<std::uint64_t>(static_cast<double>(delta(now.sent, previousNetworkSnapshot_->sent)) / elapsed);
      info.receiveRate =
          static_cast<std::uint64_t>(static_cast<double>(delta(now.received, previousNetworkSnapshot_->received)) / elapsed);
    }
  }
  previousNetworkSnapshot_ = now;
  return info;
}

BatteryInfo SystemMetricsProvider::fetchBattery() {
  const auto reading = counters_->readBattery();
  BatteryInfo info;
  info.percentage = reading.percentage;
  info.isCharging = reading.isCharging;
  info.minutesRemaining = reading.isCharging ? reading.minutesToFull : reading.minutesToEmpty;
  return info;
}

ThermalInfo SystemMetricsProvider::fetchThermal() {
  ThermalInfo info;
  if (const auto celsius = counters_->readCpuTemperature(); celsius && *celsius >= 0) info.cpuTemperature = celsius;
  return info;
}

SystemStatus SystemMetricsProvider::readStatus() {
  SystemStatus status;
  status.cpu.cores = processorCount();
  status.cpu.model = cpuModelName();
  status.cpu.usage = cpuUsage();
  status.memory = fetchMemory();
  status.disk = fetchDisk();
  status.thermal = fetchThermal();
  status.network = fetchNetwork();
  status.battery = fetchBattery();
  status.healthScore = computeHealthScore(status.cpu, status.memory, status.disk);
  return status;
}

int SystemMetricsProvider::computeHealthScore(const CPUInfo& cpu, const MemoryInfo& memory, const DiskInfo& disk) {
  double score = 100;
  score -= penalty(cpu.usage, {{80, 20}, {50, 10}});
  score -= penalty(memory.usagePercent, {{85, 25}, {70, 15}, {50, 5}});
  score -= penalty(disk.usagePercent, {{90, 30}, {75, 15}, {60, 5}});
  return std::clamp(static_cast<int>(std::trunc(score)), 0, 100);
}

} // namespace halcyra::dashboard
