#include "dashboard/SystemStatus.h"

#include <nlohmann/json.hpp>

namespace halcyra::dashboard {
namespace {

nlohmann::json capacityJson(const MemoryInfo& info) {
  return {{"total", info.total}, {"used", info.used}, {"free", info.free}, {"usage_percent", info.usagePercent}};
}

} // namespace

nlohmann::json toJson(const SystemStatus& status) {
  nlohmann::json thermal = nlohmann::json::object();
  thermal["cpu_temperature"] =
      status.thermal.cpuTemperature ? nlohmann::json(*status.thermal.cpuTemperature) : nlohmann::json(nullptr);
  return {
      {"cpu", {{"usage", status.cpu.usage}, {"cores", status.cpu.cores}, {"model", status.cpu.model}}},
      {"memory", capacityJson(status.memory)},
      {"disk", capacityJson(status.disk)},
      {"thermal", thermal},
      {"network",
       {{"bytes_sent", status.network.bytesSent},
        {"bytes_received", status.network.bytesReceived},
        {"send_rate", status.network.sendRate},
        {"receive_rate", status.network.receiveRate}}},
      {"battery",
       {{"percentage", status.battery.percentage},
        {"is_charging", status.battery.isCharging},
        {"minutes_remaining", status.battery.minutesRemaining}}},
      {"health_score", status.healthScore},
  };
}

std::string healthWord(int score) {
  if (score > 70) return "Good";
  if (score > 40) return "Fair";
  return "Poor";
}

} // namespace halcyra::dashboard
