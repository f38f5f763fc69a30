#include <chrono>
#include <cstdio>
#include <ctime>
#include <memory>
#include <thread>

#include <fmt/format.h>

#include "cli/Arguments.h"
#include "cli/CleanOutput.h"
#include "cli/Command.h"
#include "cli/Terminal.h"
#include "core/ByteFormatter.h"
#include "core/JsonText.h"
#include "dashboard/DashboardFormat.h"
#include "dashboard/SystemMetricsProvider.h"

namespace halcyra::cli {
namespace {

using core::ByteFormatter::format;
using core::ByteFormatter::formatMemory;
using dashboard::SystemStatus;

constexpr std::string_view kUsage =
    "Usage: halcyra status [--json] [--watch] [--home DIR] [--root DIR]\n\n"
    "Shows the machine's health: the score and what it is made of (processor, memory and\n"
    "disk use), the processor's temperature, the battery and the network rates. Usage and\n"
    "rates are measured over half a second.\n\n"
    "Options:\n"
    "  --json       print the snapshot as JSON (temperature null when there is no sensor)\n"
    "  --watch      print one line (with --json, one object) every 5 seconds until interrupted\n"
    "  --home DIR   report the volume of this folder as the home's\n"
    "  --root DIR   read /proc and /sys below this folder\n"
    "  -h, --help   show this text\n";

constexpr auto kFirstInterval = std::chrono::milliseconds(500);
constexpr auto kWatchInterval = std::chrono::seconds(5);

std::string percent(double value) { return fmt::format("{}%", static_cast<long long>(value)); }

std::string temperatureText(const SystemStatus& status) {
  if (!status.thermal.cpuTemperature) return "no sensor";
  return fmt::format("{}°C", static_cast<long long>(*status.thermal.cpuTemperature));
}

std::string batteryText(const SystemStatus& status) {
  const auto& battery = status.battery;
  if (battery.percentage < 0) return "none";
  std::string text = fmt::format("{}%", battery.percentage);
  if (battery.isCharging) text += ", charging";
  if (battery.minutesRemaining >= 1) {
    text += ", " + dashboard::formatTimeRemaining(battery.minutesRemaining, battery.isCharging);
  }
  return text;
}

std::string networkText(const SystemStatus& status) {
  return fmt::format("{} up, {} down", dashboard::formatNetworkRate(status.network.sendRate),
                     dashboard::formatNetworkRate(status.network.receiveRate));
}

void printReadable(const SystemStatus& status) {
  const auto& cpu = status.cpu;
  std::string processor = fmt::format("{} of {} {}", percent(cpu.usage), cpu.cores, cpu.cores == 1 ? "core" : "cores");
  // The brand is whatever the kernel or firmware says: escaped like any text from outside.
  if (!cpu.model.empty()) processor += ", " + escapedName(cpu.model);
  fmt::print(stdout,
             "Health       {} ({})\n"
             "Processor    {}\n"
             "Memory       {} used, {} free\n"
             "Disk         {} free of {}\n"
             "Temperature  {}\n"
             "Battery      {}\n"
             "Network      {}\n",
             status.healthScore, dashboard::healthWord(status.healthScore), processor,
             formatMemory(status.memory.used), formatMemory(status.memory.free), format(status.disk.free),
             format(status.disk.total), temperatureText(status), batteryText(status), networkText(status));
}

void printLine(const SystemStatus& status) {
  const std::time_t now = std::time(nullptr);
  char clock[16] = {};
  std::tm local{};
  std::strftime(clock, sizeof clock, "%H:%M:%S", localtime_r(&now, &local));
  fmt::print(stdout, "{}  health {} ({})  cpu {}  memory {}  disk {}  temp {}  battery {}  net {}\n", clock,
             status.healthScore, dashboard::healthWord(status.healthScore), percent(status.cpu.usage),
             percent(status.memory.usagePercent), percent(status.disk.usagePercent), temperatureText(status),
             batteryText(status), networkText(status));
}

int runStatus(const std::vector<std::string>& args) {
  Arguments arguments({"--json", "--watch"}, {"--home", "--root"});
  arguments.parse(args);
  if (!arguments.positional().empty()) throw UsageError("unexpected argument " + arguments.positional().front());
  const bool json = arguments.has("--json");
  const bool watch = arguments.has("--watch");

  dashboard::SystemMetricsProvider provider(std::make_shared<platform::NativeSystemCounters>(systemPathsFrom(arguments)));
  // Usage and rates are differences between two readings: the first one only sets the mark.
  {
    StatusLine statusLine;
    statusLine.status("Reading the system...");
    provider.readStatus();
    std::this_thread::sleep_for(kFirstInterval);
  }

  while (true) {
    const SystemStatus status = provider.readStatus();
    if (json) {
      // One object per line while watching, so that each reading can be read as it comes.
      fmt::print(stdout, "{}\n", core::toJsonText(dashboard::toJson(status), watch ? -1 : 2));
    } else if (watch) {
      printLine(status);
    } else {
      printReadable(status);
    }
    if (!watch) return 0;
    // Each reading reaches its reader as it is made; once the reader has gone, so does this.
    if (!flushStandardOutput()) return 1;
    std::this_thread::sleep_for(kWatchInterval);
  }
}

const Command statusCommand{"status", "show the machine's health, load, battery and network", kUsage, runStatus};

} // namespace

HALCYRA_REGISTER_COMMAND(statusCommand);

} // namespace halcyra::cli
