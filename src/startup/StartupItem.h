#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace halcyra::startup {

/// The two lists of the tool, in the order the screen shows them.
enum class StartupItemCategory { loginItems, launchAgents };

/// "loginItems", "launchAgents".
std::string_view toString(StartupItemCategory category);
std::optional<StartupItemCategory> startupItemCategoryFrom(std::string_view name);

/// One thing that starts by itself: a login item (a System Events item, or a freedesktop
/// autostart entry) or a job (a launchd property list, or a systemd service).
///
/// Ids are stable between scans: "login-" + path for a login item, "agent-" + label for a job.
struct StartupItem {
  std::string id;
  std::string name;
  /// A login item: its path (the application, or the autostart entry). A job: its application,
  /// else its executable, else its property list or unit file.
  std::string path;
  StartupItemCategory category = StartupItemCategory::loginItems;
  bool isEnabled = true;
  /// The file whose icon stands for the item (an application bundle, an image, the item
  /// itself); none when nothing on disk fits.
  std::optional<std::string> icon;
  std::optional<std::string> bundleIdentifier;
  /// A job's property list or unit file; none for login items.
  std::optional<std::string> plistPath;
  /// A job's launchd label or systemd unit name; none for login items.
  std::optional<std::string> label;

  friend bool operator==(const StartupItem&, const StartupItem&) = default;
};

/// Whether each launchd job is switched on, as three outside sources tell it: the override
/// tables of the user's and of the system domain, and the Background Task Management dump.
struct EnabledStateSnapshot {
  std::map<std::string, bool> userOverrides;   ///< label to enabled, the user's GUI domain
  std::map<std::string, bool> systemOverrides; ///< label to enabled, the system domain
  std::set<std::string> btmParentDisabled;      ///< labels whose parent in the dump is disabled
  std::set<std::string> btmNamedParentDisabled; ///< those whose parent is not "Unknown Developer"
  std::map<std::string, std::string> btmNames;  ///< label to the name the dump shows
};

} // namespace halcyra::startup
