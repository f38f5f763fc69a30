#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "platform/Platform.h"
#include "startup/StartupItem.h"
#include "startup/StartupItemsServiceProtocol.h"

namespace halcyra::startup {

/// What one command left: standard output and standard error as one text, and its status.
struct ShellResult {
  std::string output;
  int exitCode = -1; ///< -1 when it did not exit by itself
  bool timedOut = false; ///< stopped at the time limit: the output may end anywhere
};

/// The program of a launchd job, as its property list gives it.
struct LaunchdProgram {
  std::optional<std::string> program;                       ///< "Program", when a string
  std::optional<std::vector<std::string>> programArguments; ///< "ProgramArguments", when a list of strings
};

/// The application a job belongs to, or the name its label gives.
struct JobAppInfo {
  std::string name;
  std::optional<std::string> appPath;
};

/// The log of a job's switch, and whether every command of it could be started.
struct SwitchReport {
  std::string log;
  bool allStarted = true;
};

/// What starts by itself on this machine, whether each is on, and the switches.
///
/// On macOS: the login items of System Events (through "/usr/bin/osascript"), and the launchd
/// jobs of the three property-list folders, whose state is decided by the override tables of
/// "/bin/launchctl print-disabled" and the dump of "/usr/bin/sfltool dumpbtm". On a Linux
/// desktop: the freedesktop autostart entries (the user's over the system's) as login items,
/// and the user's and the system's systemd services as jobs. Each source that is missing adds
/// nothing, so one machine gives whichever it has. Tools are run from their fixed paths, files
/// are read below the platform's home and root. Holds no state between calls.
class StartupItemsService final : public StartupItemsServiceProtocol {
public:
  /// Longest a reading command may take: System Events or launchd that hang must not stall a scan.
  static constexpr std::chrono::seconds kReadTimeLimit{60};
  /// Longest a switch without a password prompt may take (starting a service can be slow).
  static constexpr std::chrono::seconds kSwitchTimeLimit{120};

  /// `readTimeLimit` bounds each reading command of a scan.
  explicit StartupItemsService(platform::Platform platform, std::chrono::milliseconds readTimeLimit = kReadTimeLimit);

  std::vector<StartupItem> scanLoginItems() override;
  std::vector<StartupItem> scanLaunchAgents(const ProgressCallback& onProgress) override;
  void toggleLoginItem(const std::string& name, const std::string& path, bool enable) override;
  std::string toggleLaunchAgent(const std::string& label, const std::string& plistPath, bool enable) override;

  /// The same switch as toggleLaunchAgent, also telling whether every command could be started.
  SwitchReport switchJob(const std::string& label, const std::string& plistPath, bool enable);

  /// The launchd override tables and the Background Task Management dump; what cannot be read
  /// stays empty.
  EnabledStateSnapshot fetchEnabledStates();

  /// "Program" if it is a string, else the first element of a non-empty "ProgramArguments".
  static std::optional<std::string> resolveExecutablePath(const LaunchdProgram& job);
  /// The application bundle within six folders above the executable, else a name from the
  /// last component of the label, capitalised ("com.acme.sync" gives "Sync").
  static JobAppInfo resolveAppInfo(const std::optional<std::string>& executablePath, const std::string& label);
  /// The file whose icon stands for `path`: the application bundle it is or lies in (six
  /// folders up at most), else the path itself when it exists. Returned as found on disk.
  std::optional<std::string> resolveIcon(const std::string& path) const;

  /// Runs a tool at its fixed path; both outputs are drained and put together ("<out>\nstderr:
  /// <err>" when both hold text). Throws std::runtime_error only when it cannot be started.
  ShellResult runShell(const std::string& executable, const std::vector<std::string>& arguments,
                       std::optional<std::chrono::milliseconds> timeLimit = kReadTimeLimit) const;

  /// Folders of the freedesktop autostart entries: the user's (which wins) and the system's.
  std::string userAutostartFolder() const;
  std::string systemAutostartFolder() const;

private:
  /// The text of a reading command; none when it could not be started or was stopped at the
  /// time limit, as half an answer could read as a different one.
  std::optional<std::string> readTool(const std::string& executable, const std::vector<std::string>& arguments) const;
  std::vector<StartupItem> scanSystemEventsItems();
  std::vector<StartupItem> scanAutostartEntries() const;
  void scanLaunchdJobs(const EnabledStateSnapshot& states, const ProgressCallback& onProgress,
                       std::vector<StartupItem>& items) const;
  void scanServices(bool systemScope, const ProgressCallback& onProgress, std::vector<StartupItem>& items) const;
  std::optional<std::string> bundleIdentifierAt(const std::string& appPath) const;
  std::optional<std::string> iconNamed(const std::string& iconName) const;
  std::vector<std::string> unitFolders(bool systemScope) const;
  /// Runs the first of systemctl's fixed paths that can be started.
  ShellResult runSystemctl(const std::vector<std::string>& arguments, std::optional<std::chrono::milliseconds> timeLimit) const;

  void switchAutostartEntry(const std::string& fileName, bool enable) const;
  SwitchReport switchLaunchdJob(const std::string& label, const std::string& plistPath, bool enable);
  SwitchReport switchService(const std::string& label, const std::string& unitPath, bool systemScope, bool enable);

  platform::Platform platform_;
  std::chrono::milliseconds readTimeLimit_;
};

} // namespace halcyra::startup
