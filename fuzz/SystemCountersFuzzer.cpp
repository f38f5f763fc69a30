// The machine's counters are read from files other programs' drivers fill (a Bluetooth mouse
// reports its battery beside the laptop's own): whatever they hold, the readers neither throw
// nor hang, and the figures stay in their ranges.
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "FuzzInput.h"
#include "dashboard/SystemMetricsProvider.h"

using namespace halcyra;

namespace {

std::string root() {
  static const std::string folder = [] {
    char name[] = "/tmp/halcyra-fuzz-counters-XXXXXX";
    const char* made = ::mkdtemp(name);
    if (made == nullptr) std::abort();
    const std::string base = made;
    for (const char* sub : {"/home", "/proc", "/proc/net", "/sys", "/sys/class", "/sys/class/net",
                            "/sys/class/net/eth0", "/sys/class/net/eth0/device", "/sys/class/power_supply",
                            "/sys/class/power_supply/BAT0", "/sys/class/hwmon", "/sys/class/hwmon/hwmon0",
                            "/sys/devices", "/sys/devices/system", "/sys/devices/system/cpu"}) {
      ::mkdir((base + sub).c_str(), 0700);
    }
    return base;
  }();
  return folder;
}

void write(const std::string& path, const std::string& text) {
  const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  if (fd < 0) std::abort();
  if (!text.empty() && ::write(fd, text.data(), text.size()) != static_cast<ssize_t>(text.size())) std::abort();
  ::close(fd);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // The input is cut at NUL bytes into the files, in this order.
  static const char* files[] = {"/proc/stat", "/proc/meminfo", "/proc/net/dev", "/proc/uptime",
                                "/sys/class/power_supply/BAT0/uevent", "/sys/class/hwmon/hwmon0/temp1_input",
                                "/sys/devices/system/cpu/online", "/proc/cpuinfo"};
  std::string rest = fuzz::text(data, size);
  for (const char* file : files) {
    const auto nul = rest.find('\0');
    write(root() + file, rest.substr(0, nul));
    rest = nul == std::string::npos ? std::string() : rest.substr(nul + 1);
  }
  write(root() + "/sys/class/hwmon/hwmon0/name", "coretemp\n");

  dashboard::SystemMetricsProvider provider(
      std::make_shared<platform::NativeSystemCounters>(platform::SystemPaths(root() + "/home", root())));
  for (int reading = 0; reading < 2; ++reading) {
    const auto status = provider.readStatus();
    fuzz::require(status.cpu.usage >= 0 && status.cpu.usage <= 100, "usage is a share");
    fuzz::require(status.cpu.cores >= 1, "at least one processor");
    fuzz::require(status.memory.used <= status.memory.total, "no more memory used than there is");
    fuzz::require(status.memory.usagePercent >= 0 && status.memory.usagePercent <= 100, "memory use is a share");
    fuzz::require(status.battery.percentage >= -1 && status.battery.percentage <= 100, "a charge is a percentage");
    fuzz::require(!status.thermal.cpuTemperature ||
                      (*status.thermal.cpuTemperature > 0 && *status.thermal.cpuTemperature < 130),
                  "only plausible temperatures");
    fuzz::require(status.healthScore >= 25 && status.healthScore <= 100, "the score stays in its range");
  }
  return 0;
}
