#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "startup/StartupItem.h"

namespace halcyra::startup {

// Readers of what the system's tools print and of the files that describe what starts. Every
// one of them takes hostile text: they never fail, and what does not fit is passed over.

/// One login item as the listing script prints it: name, a tab, path.
struct LoginItemLine {
  std::string name;
  std::string path;
  friend bool operator==(const LoginItemLine&, const LoginItemLine&) = default;
};

/// The lines of the login-item script's answer that hold a tab and a name, in their order.
/// An error text of System Events holds no tab and gives nothing.
std::vector<LoginItemLine> parseLoginItemList(std::string_view output);

/// Label to enabled, from `launchctl print-disabled`. The words "enabled" and "false" (an
/// explicit re-enable, as macOS 12 and older print it) read as enabled; "disabled", "true" and
/// anything else as disabled. Entries of a "login item associations" block name the
/// application of a helper, not a switch, and are passed over.
std::map<std::string, bool> parseDisabledServices(std::string_view output);

/// The three fields of the snapshot that come from the dump of `sfltool dumpbtm`.
struct BackgroundTaskDump {
  std::set<std::string> parentDisabled;      ///< labels whose parent is disabled
  std::set<std::string> namedParentDisabled; ///< the subset whose parent is a named developer
  std::map<std::string, std::string> names;  ///< label to display name
  friend bool operator==(const BackgroundTaskDump&, const BackgroundTaskDump&) = default;
};

/// Reads the dump record by record. A record's identifier carries its type as a prefix
/// ("16.com.docker.vmnetd"): a child is known by the label behind the first ".", a parent by
/// its whole identifier. A parent called "Unknown Developer" is shared by every unsigned job,
/// so its switch says nothing about one of them and does not make a parent "named".
BackgroundTaskDump parseBackgroundTaskDump(std::string_view output);

/// The keys of a freedesktop desktop entry's "[Desktop Entry]" group, in file order; other
/// groups, comments and blank lines are left out. Localised keys ("Name[de]") keep their
/// suffix. None when the text has no such group.
struct DesktopEntry {
  std::vector<std::pair<std::string, std::string>> keys;

  /// The last value of `key`, as written (escapes unresolved).
  std::optional<std::string> value(std::string_view key) const;
  /// The value with the escapes \s \n \t \r \\ resolved.
  std::optional<std::string> text(std::string_view key) const;
  /// A boolean key: "true" or "1" is true, "false" or "0" false; anything else counts as absent.
  std::optional<bool> boolean(std::string_view key) const;
};
std::optional<DesktopEntry> parseDesktopEntry(std::string_view text);

/// Whether the entry starts at login: not when Hidden is true, nor when GNOME's or MATE's own
/// switch is off.
bool desktopEntryIsEnabled(const DesktopEntry& entry);

/// The entry's text with its switch keys set for `enable`: Hidden, and X-GNOME-Autostart-enabled
/// and X-MATE-Autostart-enabled where the entry has them. Every other line stays as it was;
/// a key the group lacks is added at the end of the group.
std::string desktopEntryWithSwitch(std::string_view text, bool enable);

/// Whether two entries say the same once their switch keys are left aside.
bool sameApartFromSwitch(const DesktopEntry& a, const DesktopEntry& b);

/// One row of `systemctl list-unit-files --type=service --no-legend`.
struct UnitFileState {
  std::string unit;
  std::string state;
  friend bool operator==(const UnitFileState&, const UnitFileState&) = default;
};
/// The rows whose first column is a service unit name, in their order; the legend and the
/// count line, where printed, are passed over.
std::vector<UnitFileState> parseUnitFileList(std::string_view output);

/// What a service's unit file says about it.
struct UnitFileSummary {
  std::optional<std::string> description; ///< Description= of [Unit]
  std::optional<std::string> program;     ///< the program of the first ExecStart= of [Service], if absolute
};
UnitFileSummary parseUnitFile(std::string_view text);

} // namespace halcyra::startup
