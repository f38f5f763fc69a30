// The Linux counters over fake machines: /proc and /sys trees laid out in a temporary folder
// with the text real kernels write (see the recorded captures of this build machine, of
// laptops and of servers).

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "dashboard/SystemMetricsProvider.h"
#include "platform/SystemCounters.h"
#include "support/TempDir.h"

namespace {

using halcyra::dashboard::SystemMetricsProvider;
using halcyra::platform::NativeSystemCounters;
using halcyra::platform::SystemPaths;
using halcyra::testing::TempDir;

// This build machine: 2 processors, no battery, no hwmon, an empty power_supply folder.
constexpr const char* kStat =
    "cpu  67146 0 22387 72540 1651 0 188 84 0 0\n"
    "cpu0 32575 0 8613 40511 316 0 19 38 0 0\n"
    "cpu1 34571 0 13774 32029 1334 0 169 46 0 0\n"
    "intr 704625 0 0 0 0 0 0\n"
    "ctxt 1203917\n";

constexpr const char* kNetDev =
    "Inter-|   Receive                                                |  Transmit\n"
    " face |bytes    packets errs drop fifo frame compressed multicast|bytes    packets errs drop fifo colls carrier compressed\n"
    "    lo:    3267      29    0    0    0     0          0         0     3267      29    0    0    0     0       0          0\n"
    "  ifb0:       0       0    0    0    0     0          0         0        0       0    0    0    0     0       0          0\n"
    "  eth0: 57752235    1371    0    0    0     0          0         0    67812     733    0    0    0     0       0          0\n";

// Lenovo Legion Go S, discharging, energy-based.
constexpr const char* kLegionBattery =
    "DEVTYPE=power_supply\n"
    "POWER_SUPPLY_NAME=BAT0\n"
    "POWER_SUPPLY_TYPE=Battery\n"
    "POWER_SUPPLY_STATUS=Discharging\n"
    "POWER_SUPPLY_PRESENT=1\n"
    "POWER_SUPPLY_VOLTAGE_NOW=11705000\n"
    "POWER_SUPPLY_POWER_NOW=22543000\n"
    "POWER_SUPPLY_ENERGY_FULL_DESIGN=55500000\n"
    "POWER_SUPPLY_ENERGY_FULL=55500000\n"
    "POWER_SUPPLY_ENERGY_NOW=32350000\n"
    "POWER_SUPPLY_CAPACITY=58\n"
    "POWER_SUPPLY_CAPACITY_LEVEL=Normal\n"
    "POWER_SUPPLY_TYPE=Battery\n"
    "POWER_SUPPLY_MODEL_NAME=L24M3PK8\n";

/// A machine below a temporary root, with the home folder inside it.
class FakeMachine : public ::testing::Test {
protected:
  FakeMachine() {
    tmp.mkdir("home");
    tmp.file("proc/stat", kStat);
    tmp.file("proc/cpuinfo", "processor\t: 0\nvendor_id\t: GenuineIntel\nmodel name\t: Intel(R) Xeon(R) Processor\n\n"
                             "processor\t: 1\nmodel name\t: Intel(R) Xeon(R) Processor\n");
    tmp.file("sys/devices/system/cpu/online", "0-1\n");
    tmp.file("proc/uptime", "870.42 1331.20\n");
    tmp.file("proc/net/dev", kNetDev);
    tmp.mkdir("sys/class/net/eth0/device");
    tmp.mkdir("sys/class/net/lo");
    tmp.mkdir("sys/class/net/ifb0");
    tmp.mkdir("sys/class/power_supply");
  }

  NativeSystemCounters counters() const { return NativeSystemCounters(SystemPaths(tmp / "home", tmp.path())); }
  SystemMetricsProvider provider() const {
    return SystemMetricsProvider(std::make_shared<NativeSystemCounters>(SystemPaths(tmp / "home", tmp.path())));
  }
  void sensor(const std::string& hwmon, const std::string& driver, const std::string& input, long long milli,
              const std::string& label = {}) {
    tmp.file("sys/class/hwmon/" + hwmon + "/name", driver + "\n");
    tmp.file("sys/class/hwmon/" + hwmon + "/" + input + "_input", std::to_string(milli) + "\n");
    if (!label.empty()) tmp.file("sys/class/hwmon/" + hwmon + "/" + input + "_label", label + "\n");
  }

  TempDir tmp;
};

TEST_F(FakeMachine, ProcessorModelCoresAndBusyShareBetweenTwoReadings) {
  auto machine = counters();
  EXPECT_EQ(machine.cpuModelName(), "Intel(R) Xeon(R) Processor");
  EXPECT_EQ(machine.processorCount(), 2);
  tmp.file("sys/devices/system/cpu/online", "0-3,6,8-9\n"); // holes after hot-unplug
  EXPECT_EQ(machine.processorCount(), 7);

  // Nice counts as busy, iowait as idle; irq, softirq and steal as system time.
  const auto ticks = machine.readProcessorTicks();
  ASSERT_TRUE(ticks.has_value());
  EXPECT_EQ(ticks->user, 67146u);
  EXPECT_EQ(ticks->system, 22387u + 188u + 84u);
  EXPECT_EQ(ticks->idle, 72540u + 1651u);

  auto metrics = provider();
  EXPECT_EQ(metrics.cpuUsage(), 0); // the first reading has nothing to compare with
  // 300 busy ticks (100 user + 50 nice + 150 system) and 100 idle.
  tmp.file("proc/stat", "cpu  67246 50 22537 72640 1651 0 188 84 0 0\n");
  EXPECT_DOUBLE_EQ(metrics.cpuUsage(), 75.0);
  // Nothing happened since: no division by zero, 0.
  EXPECT_EQ(metrics.cpuUsage(), 0);
  // An old kernel with four fields, and a counter that stepped back, count only what moved on.
  tmp.file("proc/stat", "cpu 67246 50 22437 72740\n");
  EXPECT_DOUBLE_EQ(metrics.cpuUsage(), 0.0);
}

TEST_F(FakeMachine, UnreadableProcessorFilesGiveTheNeutralValues) {
  tmp.file("proc/stat", "intr 1 2 3\n");
  tmp.file("proc/cpuinfo", "");
  tmp.file("sys/devices/system/cpu/online", "garbage");
  auto metrics = provider();
  EXPECT_EQ(metrics.cpuUsage(), 0);
  EXPECT_EQ(metrics.cpuUsage(), 0);
  EXPECT_EQ(metrics.cpuModelName(), "");
  EXPECT_EQ(metrics.processorCount(), 1);
}

TEST_F(FakeMachine, MemoryUsedIsTotalLessAvailable) {
  tmp.file("proc/meminfo", "MemTotal:       24684084 kB\nMemFree:        18690844 kB\n"
                           "MemAvailable:   24184700 kB\nHugePages_Total:       0\n");
  auto memory = provider().fetchMemory();
  EXPECT_EQ(memory.total, 24684084ull * 1024);
  EXPECT_EQ(memory.used, (24684084ull - 24184700ull) * 1024);
  EXPECT_EQ(memory.free, 24184700ull * 1024);
  EXPECT_NEAR(memory.usagePercent, 2.023, 0.001);

  // Before MemAvailable existed: free + buffers + page cache + reclaimable slab.
  tmp.file("proc/meminfo", "MemTotal: 1000 kB\nMemFree: 100 kB\nBuffers: 50 kB\nCached: 200 kB\nSReclaimable: 50 kB\n");
  memory = provider().fetchMemory();
  EXPECT_EQ(memory.used, 600ull * 1024);
  EXPECT_DOUBLE_EQ(memory.usagePercent, 60.0);

  // A total without anything to tell use: nothing used.
  tmp.file("proc/meminfo", "MemTotal: 1000 kB\n");
  memory = provider().fetchMemory();
  EXPECT_EQ(memory.used, 0u);
  EXPECT_EQ(memory.free, 1024000u);
  EXPECT_EQ(memory.usagePercent, 0);
}

TEST_F(FakeMachine, DiskIsTheHomeVolumeAndAMissingHomeGivesZeros) {
  const auto disk = provider().fetchDisk();
  EXPECT_GT(disk.total, 0u);
  EXPECT_EQ(disk.used + disk.free, disk.total);
  EXPECT_GE(disk.usagePercent, 0);
  EXPECT_LE(disk.usagePercent, 100);

  const auto gone = SystemMetricsProvider(std::make_shared<NativeSystemCounters>(SystemPaths(tmp / "nowhere", tmp.path())))
                        .fetchDisk();
  EXPECT_EQ(gone.total, 0u);
  EXPECT_EQ(gone.used, 0u);
  EXPECT_EQ(gone.free, 0u);
  EXPECT_EQ(gone.usagePercent, 0);
}

TEST_F(FakeMachine, NetworkCountsDevicesAndBridgesOnly) {
  // A laptop: wireless with a long name and a huge counter glued to the colon, a bridge, a
  // container's veth, a VPN tunnel and loopback.
  tmp.file("proc/net/dev",
           std::string(kNetDev).substr(0, std::string(kNetDev).find("    lo:")) +
               "    lo: 9999999 1 0 0 0 0 0 0 9999999 1 0 0 0 0 0 0\n"
               "wlp0s20f3:123456789012 5 0 0 0 0 0 0 1000 5 0 0 0 0 0 0\n"
               "docker0: 500 1 0 0 0 0 0 0 700 1 0 0 0 0 0 0\n"
               "veth1a2b3c: 8888 1 0 0 0 0 0 0 8888 1 0 0 0 0 0 0\n"
               "  tun0: 7777 1 0 0 0 0 0 0 7777 1 0 0 0 0 0 0\n"
               "  eth0: 57752235    1371    0    0    0     0          0         0    67812     733    0    0    0     0       0          0\n"
               "  bad/name: 1 1 0 0 0 0 0 0 1 1 0 0 0 0 0 0\n"
               "  eth1: No statistics available.\n");
  tmp.mkdir("sys/class/net/wlp0s20f3/device");
  tmp.mkdir("sys/class/net/docker0/bridge");
  tmp.mkdir("sys/class/net/veth1a2b3c");
  tmp.mkdir("sys/class/net/tun0");
  tmp.mkdir("sys/class/net/eth1/device");
  const auto network = counters().readNetworkCounters();
  EXPECT_EQ(network.received, 123456789012ull + 500 + 57752235);
  EXPECT_EQ(network.sent, 1000ull + 700 + 67812);
  EXPECT_DOUBLE_EQ(network.uptimeSeconds, 870.42);
}

TEST_F(FakeMachine, NetworkRatesAreDeltasOverUptimeAndAFallenCounterCountsFromZero) {
  auto metrics = provider();
  auto first = metrics.fetchNetwork();
  EXPECT_EQ(first.bytesReceived, 57752235u);
  EXPECT_EQ(first.bytesSent, 67812u);
  EXPECT_EQ(first.receiveRate, 0u);
  EXPECT_EQ(first.sendRate, 0u);

  tmp.file("proc/uptime", "872.42 1335.00\n");
  tmp.file("proc/net/dev", std::string(kNetDev).substr(0, std::string(kNetDev).find("  eth0:")) +
                               "  eth0: 57762236 1 0 0 0 0 0 0 68813 1 0 0 0 0 0 0\n");
  auto second = metrics.fetchNetwork();
  EXPECT_EQ(second.receiveRate, 5000u); // 10001 bytes in 2 s, cut to a whole number
  EXPECT_EQ(second.sendRate, 500u);

  // The interface was re-created: its counters start again below the previous ones.
  tmp.file("proc/uptime", "874.42 1339.00\n");
  tmp.file("proc/net/dev", std::string(kNetDev).substr(0, std::string(kNetDev).find("  eth0:")) +
                               "  eth0: 4000 1 0 0 0 0 0 0 600 1 0 0 0 0 0 0\n");
  auto third = metrics.fetchNetwork();
  EXPECT_EQ(third.receiveRate, 2000u);
  EXPECT_EQ(third.sendRate, 300u);
  EXPECT_EQ(third.bytesReceived, 4000u);

  // A clock that did not move gives no rate rather than a division by zero.
  auto fourth = metrics.fetchNetwork();
  EXPECT_EQ(fourth.receiveRate, 0u);
}

TEST_F(FakeMachine, DesktopWithoutBatteryAndWithoutSensors) {
  const auto battery = provider().fetchBattery();
  EXPECT_EQ(battery.percentage, -1);
  EXPECT_FALSE(battery.isCharging);
  EXPECT_EQ(battery.minutesRemaining, -1);
  EXPECT_FALSE(provider().fetchThermal().cpuTemperature.has_value());

  // Only the mains adapter, and a game pad's own battery, which is not the machine's.
  tmp.file("sys/class/power_supply/AC/uevent", "POWER_SUPPLY_NAME=AC\nPOWER_SUPPLY_TYPE=Mains\nPOWER_SUPPLY_ONLINE=1\n");
  tmp.file("sys/class/power_supply/0005:054C:0CE6.0009-battery/uevent",
           "POWER_SUPPLY_NAME=0005:054C:0CE6.0009-battery\nPOWER_SUPPLY_TYPE=Battery\nPOWER_SUPPLY_SCOPE=Device\n"
           "POWER_SUPPLY_STATUS=Discharging\nPOWER_SUPPLY_CAPACITY=40\n");
  EXPECT_EQ(provider().fetchBattery().percentage, -1);
}

TEST_F(FakeMachine, LaptopDischargingFromEnergyAndPower) {
  tmp.file("sys/class/power_supply/ACAD/uevent", "POWER_SUPPLY_NAME=ACAD\nPOWER_SUPPLY_TYPE=Mains\nPOWER_SUPPLY_ONLINE=0\n");
  tmp.file("sys/class/power_supply/BAT0/uevent", kLegionBattery);
  const auto battery = provider().fetchBattery();
  EXPECT_EQ(battery.percentage, 58);
  EXPECT_FALSE(battery.isCharging);
  EXPECT_EQ(battery.minutesRemaining, 86); // 32.35 Wh at 22.543 W
}

TEST_F(FakeMachine, LaptopChargingFromChargeAndCurrent) {
  // An old-style file without the type, which then stands in a file of its own.
  tmp.file("sys/class/power_supply/BAT1/uevent",
           "POWER_SUPPLY_NAME=BAT1\nPOWER_SUPPLY_STATUS=Charging\nPOWER_SUPPLY_PRESENT=1\n"
           "POWER_SUPPLY_CURRENT_NOW=-1500000\nPOWER_SUPPLY_CHARGE_FULL=3558000\nPOWER_SUPPLY_CHARGE_NOW=1308000\n"
           "POWER_SUPPLY_CAPACITY=37\n");
  tmp.file("sys/class/power_supply/BAT1/type", "Battery\n");
  auto battery = provider().fetchBattery();
  EXPECT_EQ(battery.percentage, 37);
  EXPECT_TRUE(battery.isCharging);
  EXPECT_EQ(battery.minutesRemaining, 90); // 2.25 Ah to go at 1.5 A, whatever the sign

  // Charging, but the driver gives no rate: the time is unknown.
  tmp.file("sys/class/power_supply/BAT1/uevent",
           "POWER_SUPPLY_NAME=BAT1\nPOWER_SUPPLY_STATUS=Charging\nPOWER_SUPPLY_CAPACITY=1536\n");
  battery = provider().fetchBattery();
  EXPECT_TRUE(battery.isCharging);
  EXPECT_EQ(battery.minutesRemaining, -1);
  EXPECT_EQ(battery.percentage, 100); // a bogus capacity is held to the scale

  // Plugged in and held below full: neither charging nor emptying.
  tmp.file("sys/class/power_supply/BAT1/uevent",
           "POWER_SUPPLY_NAME=BAT1\nPOWER_SUPPLY_STATUS=Not charging\nPOWER_SUPPLY_CURRENT_NOW=1000\n"
           "POWER_SUPPLY_CHARGE_FULL=2871000\nPOWER_SUPPLY_CHARGE_NOW=2713000\nPOWER_SUPPLY_CAPACITY=94\n");
  battery = provider().fetchBattery();
  EXPECT_EQ(battery.percentage, 94);
  EXPECT_FALSE(battery.isCharging);
  EXPECT_EQ(battery.minutesRemaining, -1);
}

TEST_F(FakeMachine, TemperatureIsTheMeanOfThePackageSensors) {
  // Two sockets at 40 and 50; the cores, the disk and the chipset are not asked.
  sensor("hwmon3", "coretemp", "temp1", 40000, "Package id 0");
  sensor("hwmon3", "coretemp", "temp2", 90000, "Core 0");
  sensor("hwmon7", "coretemp", "temp1", 50000, "Package id 1");
  sensor("hwmon4", "nvme", "temp1", 60000, "Composite");
  sensor("hwmon8", "pch_cannonlake", "temp1", 70000);
  ASSERT_TRUE(provider().fetchThermal().cpuTemperature.has_value());
  EXPECT_DOUBLE_EQ(*provider().fetchThermal().cpuTemperature, 45.0);
}

TEST_F(FakeMachine, ImplausibleSensorValuesAreDiscarded) {
  sensor("hwmon0", "cpu_thermal", "temp1", 0);
  sensor("hwmon1", "cpu_thermal", "temp1", 130000);
  EXPECT_FALSE(provider().fetchThermal().cpuTemperature.has_value());
  sensor("hwmon2", "cpu_thermal", "temp1", 129500);
  EXPECT_DOUBLE_EQ(*provider().fetchThermal().cpuTemperature, 129.5);
  EXPECT_EQ(halcyra::platform::meanOfPlausibleTemperatures({-5, 0, 130, 40, 50}), 45.0);
}

TEST_F(FakeMachine, AmdDieSensorAndItsFallbacks) {
  // The recorded server: Tctl on temp1, one chiplet on temp3, no temp2.
  sensor("hwmon3", "k10temp", "temp1", 59625, "Tctl");
  sensor("hwmon3", "k10temp", "temp3", 46250, "Tccd1");
  sensor("hwmon0", "acpitz", "temp1", 59600);
  EXPECT_DOUBLE_EQ(*provider().fetchThermal().cpuTemperature, 59.625);
  // Tctl may be offset for the fans; the die's own value wins where there is one.
  sensor("hwmon3", "k10temp", "temp2", 49000, "Tdie");
  EXPECT_DOUBLE_EQ(*provider().fetchThermal().cpuTemperature, 49.0);

  // A kernel that keeps the name in the device folder, and a sensor that fails to read.
  TempDir other;
  other.file("sys/class/hwmon/hwmon1/device/name", "zenpower\n");
  other.file("sys/class/hwmon/hwmon1/device/temp1_input", "61000\n");
  other.file("sys/class/hwmon/hwmon1/device/temp1_label", "Tdie\n");
  other.file("sys/class/hwmon/hwmon2/name", "coretemp\n");
  other.file("sys/class/hwmon/hwmon2/temp2_input", "");
  other.file("sys/class/hwmon/hwmon2/temp2_label", "Core 0\n");
  NativeSystemCounters machine(SystemPaths(other.path(), other.path()));
  EXPECT_DOUBLE_EQ(*machine.readCpuTemperature(), 61.0);
}

TEST(HealthScore, PenaltiesByTheFirstThresholdExceeded) {
  const auto score = [](double cpu, double memory, double disk) {
    halcyra::dashboard::CPUInfo processor;
    processor.usage = cpu;
    halcyra::dashboard::MemoryInfo ram;
    ram.usagePercent = memory;
    halcyra::dashboard::DiskInfo volume;
    volume.usagePercent = disk;
    return SystemMetricsProvider::computeHealthScore(processor, ram, volume);
  };
  EXPECT_EQ(score(81, 86, 91), 25); // the worst there is
  EXPECT_EQ(score(80, 85, 90), 60); // every comparison is strictly above
  EXPECT_EQ(score(50, 50, 60), 100);
  EXPECT_EQ(score(50.01, 50.01, 60.01), 80);
  EXPECT_EQ(score(0, 70.5, 75.5), 70);
  EXPECT_EQ(score(100, 0, 0), 80);
  EXPECT_EQ(halcyra::dashboard::healthWord(40), "Poor");
  EXPECT_EQ(halcyra::dashboard::healthWord(41), "Fair");
  EXPECT_EQ(halcyra::dashboard::healthWord(70), "Fair");
  EXPECT_EQ(halcyra::dashboard::healthWord(71), "Good");
}

TEST_F(FakeMachine, StatusOfTheBuildMachineAsJson) {
  tmp.file("proc/meminfo", "MemTotal: 1000 kB\nMemAvailable: 400 kB\n");
  auto metrics = provider();
  const auto status = metrics.readStatus();
  EXPECT_EQ(status.cpu.cores, 2);
  EXPECT_EQ(status.cpu.usage, 0);
  EXPECT_DOUBLE_EQ(status.memory.usagePercent, 60.0);
  const auto json = halcyra::dashboard::toJson(status);
  EXPECT_EQ(json["cpu"]["model"], "Intel(R) Xeon(R) Processor");
  EXPECT_EQ(json["memory"]["usage_percent"], 60.0);
  EXPECT_TRUE(json["thermal"]["cpu_temperature"].is_null());
  EXPECT_EQ(json["battery"]["percentage"], -1);
  EXPECT_EQ(json["battery"]["is_charging"], false);
  EXPECT_EQ(json["battery"]["minutes_remaining"], -1);
  EXPECT_EQ(json["network"]["bytes_received"], 57752235);
  EXPECT_EQ(json["network"]["receive_rate"], 0);
  EXPECT_TRUE(json["disk"].contains("usage_percent"));
  EXPECT_EQ(json["health_score"], status.healthScore);
}

} // namespace
