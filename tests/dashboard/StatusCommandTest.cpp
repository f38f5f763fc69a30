// `halcyra status` over a fake laptop: the readable snapshot, the JSON keys, and usage errors.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "support/RunHalcyra.h"
#include "support/TempDir.h"

namespace {

using halcyra::testing::runHalcyra;
using halcyra::testing::TempDir;
using ::testing::HasSubstr;

struct FakeLaptop {
  TempDir dir;
  FakeLaptop() {
    dir.mkdir("home");
    dir.file("proc/stat", "cpu  100 0 100 800 0 0 0 0 0 0\n");
    dir.file("proc/cpuinfo", "model name\t: Test CPU 9000\n");
    dir.file("sys/devices/system/cpu/online", "0-3\n");
    dir.file("proc/meminfo", "MemTotal: 8388608 kB\nMemAvailable: 1048576 kB\n");
    dir.file("proc/uptime", "100.0 100.0\n");
    dir.file("proc/net/dev", "h1\nh2\n  eth0: 2048 1 0 0 0 0 0 0 1024 1 0 0 0 0 0 0\n");
    dir.mkdir("sys/class/net/eth0/device");
    dir.file("sys/class/power_supply/BAT0/uevent",
             "POWER_SUPPLY_TYPE=Battery\nPOWER_SUPPLY_STATUS=Charging\nPOWER_SUPPLY_CAPACITY=40\n"
             "POWER_SUPPLY_ENERGY_NOW=20000000\nPOWER_SUPPLY_ENERGY_FULL=50000000\nPOWER_SUPPLY_POWER_NOW=24000000\n");
    dir.file("sys/class/hwmon/hwmon0/name", "coretemp\n");
    dir.file("sys/class/hwmon/hwmon0/temp1_input", "52000\n");
    dir.file("sys/class/hwmon/hwmon0/temp1_label", "Package id 0\n");
  }
  std::vector<std::string> args(std::vector<std::string> extra) const {
    extra.insert(extra.end(), {"--root", dir.path(), "--home", dir / "home"});
    return extra;
  }
};

TEST(StatusCommand, ReadableSnapshotOfALaptop) {
  FakeLaptop laptop;
  const auto run = runHalcyra(laptop.args({"status"}));
  ASSERT_EQ(run.exitStatus, 0) << run.standardError;
  EXPECT_THAT(run.standardOutput, ::testing::ContainsRegex("^Health       [0-9]+ \\((Good|Fair|Poor)\\)\n"));
  EXPECT_THAT(run.standardOutput, HasSubstr("Processor    0% of 4 cores, Test CPU 9000\n"));
  EXPECT_THAT(run.standardOutput, HasSubstr("Memory       7 GB used, 1 GB free\n"));
  EXPECT_THAT(run.standardOutput, HasSubstr("Temperature  52°C\n"));
  EXPECT_THAT(run.standardOutput, HasSubstr("Battery      40%, charging, 1h 15m until full\n"));
  EXPECT_THAT(run.standardOutput, HasSubstr("Network      0 KB/s up, 0 KB/s down\n"));
}

TEST(StatusCommand, JsonCarriesTheRecordsKeys) {
  FakeLaptop laptop;
  auto run = runHalcyra(laptop.args({"status", "--json"}));
  ASSERT_EQ(run.exitStatus, 0) << run.standardError;
  auto status = nlohmann::json::parse(run.standardOutput);
  // Memory at 87.5 % costs 25 points; the disk is the real one of the temporary folder.
  const double disk = status["disk"]["usage_percent"];
  EXPECT_EQ(status["health_score"], 75 - (disk > 90 ? 30 : disk > 75 ? 15 : disk > 60 ? 5 : 0));
  EXPECT_EQ(status["cpu"]["cores"], 4);
  EXPECT_EQ(status["cpu"]["usage"], 0.0);
  EXPECT_EQ(status["memory"]["used"], 7ull * 1024 * 1024 * 1024);
  EXPECT_EQ(status["memory"]["usage_percent"], 87.5);
  EXPECT_EQ(status["thermal"]["cpu_temperature"], 52.0);
  EXPECT_EQ(status["network"]["bytes_sent"], 1024);
  EXPECT_EQ(status["network"]["bytes_received"], 2048);
  EXPECT_EQ(status["network"]["send_rate"], 0);
  EXPECT_EQ(status["battery"], (nlohmann::json{{"percentage", 40}, {"is_charging", true}, {"minutes_remaining", 75}}));
  EXPECT_GT(status["disk"]["total"].get<std::uint64_t>(), 0u);

  // Without sensors or battery: null and the neutral values.
  laptop.dir.file("sys/class/hwmon/hwmon0/name", "nvme\n");
  laptop.dir.file("sys/class/power_supply/BAT0/uevent", "POWER_SUPPLY_TYPE=Mains\n");
  run = runHalcyra(laptop.args({"status", "--json"}));
  status = nlohmann::json::parse(run.standardOutput);
  EXPECT_TRUE(status["thermal"]["cpu_temperature"].is_null());
  EXPECT_EQ(status["battery"], (nlohmann::json{{"percentage", -1}, {"is_charging", false}, {"minutes_remaining", -1}}));
  run = runHalcyra(laptop.args({"status"}));
  EXPECT_THAT(run.standardOutput, HasSubstr("Temperature  no sensor\nBattery      none\n"));
}

TEST(StatusCommand, RefusesArgumentsItDoesNotKnow) {
  EXPECT_EQ(runHalcyra({"status", "extra"}).exitStatus, 2);
  EXPECT_EQ(runHalcyra({"status", "--bogus"}).exitStatus, 2);
  EXPECT_EQ(runHalcyra({"status", "--root", "/no/such/folder"}).exitStatus, 1);
}

} // namespace
