#include <algorithm>
#include <cstdio>
#include <memory>

#include <fmt/format.h>

#include "cli/Arguments.h"
#include "cli/CleanOutput.h"
#include "cli/Command.h"
#include "cli/Terminal.h"
#include "core/JsonText.h"
#include "startup/StartupItemsService.h"

namespace halcyra::cli {
namespace {

using startup::StartupItem;

constexpr std::string_view kUsage =
    "Usage: halcyra startup [--json] [--home DIR] [--root DIR]\n"
    "       halcyra startup enable|disable ID|LABEL [--home DIR] [--root DIR]\n\n"
    "Lists what starts by itself, with whether it is on: the login items and the startup\n"
    "services. On macOS these are the login items of System Events and the launchd jobs of\n"
    "~/Library/LaunchAgents, /Library/LaunchAgents and /Library/LaunchDaemons, whose state comes\n"
    "from launchctl's override tables and the Background Task Management dump. On Linux they\n"
    "are the freedesktop autostart entries (~/.config/autostart over /etc/xdg/autostart) and\n"
    "the user's and the system's systemd services that can be enabled.\n\n"
    "`enable` and `disable` switch the item with that id (as listed) or label. A login item on\n"
    "Linux is switched in the user's own autostart entry; a system file is never written. A\n"
    "system job or service asks for the administrator's password once.\n\n"
    "Options:\n"
    "  --json       print {\"loginItems\": [...], \"launchAgents\": [...]}, each item with id,\n"
    "               name, path, category, isEnabled, bundleIdentifier, plistPath, label\n"
    "  --home DIR   read this folder as the user's home\n"
    "  --root DIR   read this folder as the system root; the tools of the running system are\n"
    "               then not asked, as they describe this machine and not the folder\n"
    "  -h, --help   show this text\n\n"
    "Exit status: 0 on success, 1 when the item is unknown or a command could not be started,\n"
    "2 on a usage error.\n";

// Stands in for the tools when a folder is read as the system: it starts nothing.
class NoTools final : public platform::ProcessRunner {
public:
  platform::ProcessOutput run(const std::string&, const std::vector<std::string>&,
                              std::optional<std::chrono::milliseconds>) override {
    return {};
  }
};

nlohmann::json optionalText(const std::optional<std::string>& value) {
  return value ? nlohmann::json(*value) : nlohmann::json(nullptr);
}

nlohmann::json itemToJson(const StartupItem& item) {
  return {{"id", item.id},
          {"name", item.name},
          {"path", item.path},
          {"category", std::string(startup::toString(item.category))},
          {"isEnabled", item.isEnabled},
          {"bundleIdentifier", optionalText(item.bundleIdentifier)},
          {"plistPath", optionalText(item.plistPath)},
          {"label", optionalText(item.label)}};
}

void printSection(const std::string& title, const std::vector<StartupItem>& items) {
  fmt::print(stdout, "{} ({})\n", title, items.size());
  if (items.empty()) fmt::print(stdout, "  No startup items found.\n");
  std::size_t width = 0;
  // Names, labels and paths come from other programs' files: escaped, they cannot forge rows.
  for (const auto& item : items) width = std::max(width, escapedName(item.name).size());
  width = std::min<std::size_t>(width, 40);
  for (const auto& item : items) {
    fmt::print(stdout, "  {:<8}  {:<{}}  {}{}\n", item.isEnabled ? "Enabled" : "Disabled", escapedName(item.name), width,
               item.label ? escapedName(*item.label) + "  " : "", escapedName(item.path));
  }
}

// The log of a switch line by line, each escaped: the tools' answers are text from elsewhere.
void printLog(const std::string& log) {
  std::size_t start = 0;
  while (start < log.size()) {
    std::size_t end = log.find('\n', start);
    if (end == std::string::npos) end = log.size();
    fmt::print(stdout, "{}\n", escapedName(std::string_view(log).substr(start, end - start)));
    start = end + 1;
  }
}

platform::Platform platformFrom(const Arguments& arguments) {
  platform::SystemPaths paths = systemPathsFrom(arguments);
  platform::Platform platform = platform::Platform::forSystem(paths);
  if (paths.root() != "/") platform.processes = std::make_shared<NoTools>();
  return platform;
}

int switchItem(startup::StartupItemsService& service, const std::string& key, bool enable) {
  StatusLine statusLine;
  statusLine.status("Scanning startup items\u2026");
  std::vector<StartupItem> items = service.scanLoginItems();
  for (auto& item : service.scanLaunchAgents([&](const std::string& text) { statusLine.status(text); })) {
    items.push_back(std::move(item));
  }
  statusLine.finish();
  const auto found = std::find_if(items.begin(), items.end(), [&](const StartupItem& item) { return item.id == key; });
  const auto byLabel = std::find_if(items.begin(), items.end(), [&](const StartupItem& item) { return item.label == key; });
  const auto match = found != items.end() ? found : byLabel;
  if (match == items.end()) throw CommandError("no startup item has the id or label " + key);
  const StartupItem& item = *match;
  const std::string state = enable ? "enabled" : "disabled";

  try {
    if (item.category == startup::StartupItemCategory::loginItems) {
      service.toggleLoginItem(item.name, item.path, enable);
      fmt::print(stdout, "Login item '{}' {}\n", escapedName(item.name), state);
      return 0;
    }
    if (!item.label || !item.plistPath) throw CommandError("missing label or plistPath for '" + item.name + "'");
    const startup::SwitchReport report = service.switchJob(*item.label, *item.plistPath, enable);
    printLog(report.log);
    if (!report.allStarted) throw CommandError("a command could not be started; '" + item.name + "' may not be " + state);
    return 0;
  } catch (const CommandError&) {
    throw;
  } catch (const std::exception& error) {
    throw CommandError("could not switch '" + item.name + "': " + error.what());
  }
}

int runStartup(const std::vector<std::string>& args) {
  Arguments arguments({"--json"}, {"--home", "--root"});
  arguments.parse(args);
  const auto& positional = arguments.positional();
  startup::StartupItemsService service(platformFrom(arguments));

  if (!positional.empty()) {
    if (positional[0] != "enable" && positional[0] != "disable") throw UsageError("unknown action " + positional[0]);
    if (positional.size() != 2) throw UsageError("name one item: halcyra startup " + positional[0] + " ID|LABEL");
    if (arguments.has("--json")) throw UsageError("--json is for the list");
    return switchItem(service, positional[1], positional[0] == "enable");
  }

  StatusLine statusLine;
  statusLine.status("Scanning login items\u2026");
  const auto loginItems = service.scanLoginItems();
  statusLine.status("Scanning launch agents\u2026");
  const auto launchAgents = service.scanLaunchAgents([&](const std::string& text) { statusLine.status(text); });
  statusLine.finish();

  if (arguments.has("--json")) {
    nlohmann::json logins = nlohmann::json::array();
    for (const auto& item : loginItems) logins.push_back(itemToJson(item));
    nlohmann::json agents = nlohmann::json::array();
    for (const auto& item : launchAgents) agents.push_back(itemToJson(item));
    fmt::print(stdout, "{}\n", core::toJsonText({{"loginItems", logins}, {"launchAgents", agents}}));
    return 0;
  }
  printSection("User Login Items", loginItems);
  fmt::print(stdout, "\n");
  printSection("Startup Services", launchAgents);
  const auto enabled = std::count_if(loginItems.begin(), loginItems.end(), [](const auto& i) { return i.isEnabled; }) +
                       std::count_if(launchAgents.begin(), launchAgents.end(), [](const auto& i) { return i.isEnabled; });
  const auto total = loginItems.size() + launchAgents.size();
  fmt::print(stdout, "\n{} {} Enabled, {} {} Total\n", enabled, enabled == 1 ? "Item" : "Items", total,
             total == 1 ? "Item" : "Items");
  return 0;
}

const Command startupCommand{"startup", "list and switch what starts at login", kUsage, runStartup};

} // namespace

HALCYRA_REGISTER_COMMAND(startupCommand);

} // namespace halcyra::cli
