#include "startup/StartupItemsService.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>

#include "core/Utf8.h"
#include "platform/PropertyList.h"
#include "platform/ShellQuoting.h"
#include "platform/UserSession.h"
#include "startup/StartupCommands.h"
#include "startup/StartupTextParsers.h"

namespace halcyra::startup {
namespace {

constexpr const char* kOsascript = "/usr/bin/osascript";
constexpr const char* kLaunchctl = "/bin/launchctl";
constexpr const char* kSfltool = "/usr/bin/sfltool";
constexpr const char* kPkexec = "/usr/bin/pkexec";
constexpr const char* kShell = "/bin/sh";
// Merged-/usr systems have both; older ones only the second.
constexpr const char* kSystemctlPaths[] = {"/usr/bin/systemctl", "/bin/systemctl"};

// A job's property list, an autostart entry or a unit file is a few KiB; anything far larger
// is no such file, and is not read into memory.
constexpr off_t kMaxDescriptionFileSize = 1 << 20;

std::string trimmed(std::string_view text) {
  constexpr std::string_view white = " \t\r\n\v\f";
  const auto first = text.find_first_not_of(white);
  if (first == std::string_view::npos) return {};
  return std::string(text.substr(first, text.find_last_not_of(white) - first + 1));
}

// The whole file when it is a regular file of reasonable size. Opened without blocking, so a
// FIFO planted where a file should be cannot hang the scan.
std::optional<std::string> readSmallFile(const std::string& path) {
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  if (fd < 0) return std::nullopt;
  struct stat info {};
  std::optional<std::string> content;
  if (::fstat(fd, &info) == 0 && S_ISREG(info.st_mode) && info.st_size <= kMaxDescriptionFileSize) {
    std::string text;
    char buffer[16384];
    for (;;) {
      const ssize_t n = ::read(fd, buffer, sizeof buffer);
      if (n > 0) {
        text.append(buffer, static_cast<std::size_t>(n));
        if (text.size() > static_cast<std::size_t>(kMaxDescriptionFileSize)) break;
        continue;
      }
      if (n < 0 && errno == EINTR) continue;
      if (n == 0) content = std::move(text);
      break;
    }
  }
  ::close(fd);
  return content;
}

bool exists(const std::string& path) {
  struct stat info {};
  return ::stat(path.c_str(), &info) == 0;
}

bool isRegularFile(const std::string& path) {
  struct stat info {};
  return ::stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

// Entry names of a folder in the order the listing gives them; none when it cannot be listed.
std::vector<std::string> listFolder(const std::string& folder) {
  std::vector<std::string> names;
  DIR* dir = ::opendir(folder.c_str());
  if (dir == nullptr) return names;
  while (const dirent* entry = ::readdir(dir)) {
    const std::string_view name = entry->d_name;
    if (name != "." && name != "..") names.emplace_back(name);
  }
  ::closedir(dir);
  return names;
}

std::string parentOf(const std::string& path) {
  const auto slash = path.find_last_of('/');
  if (slash == std::string::npos) return path;
  if (slash == 0) return "/";
  return path.substr(0, slash);
}

std::string lastComponent(const std::string& path) {
  const auto slash = path.find_last_of('/');
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

// A plain file name: something a listing could give, never a way into another folder.
bool isPlainFileName(std::string_view name) {
  return !name.empty() && name != "." && name != ".." && name.find('/') == std::string_view::npos &&
         name.find('\0') == std::string_view::npos;
}

// Upper case at the start of each word, lower case elsewhere; bytes beyond ASCII stay.
std::string capitalised(std::string_view text) {
  std::string result;
  bool startOfWord = true;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    const bool letterOrDigit = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9');
    if (byte >= 'a' && byte <= 'z' && startOfWord) result.push_back(static_cast<char>(byte - 'a' + 'A'));
    else if (byte >= 'A' && byte <= 'Z' && !startOfWord) result.push_back(static_cast<char>(byte - 'A' + 'a'));
    else result.push_back(c);
    startOfWord = !letterOrDigit && byte < 0x80;
  }
  return result;
}

bool lessIgnoringCase(const std::string& a, const std::string& b) {
  return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
    const auto lower = [](char c) {
      return c >= 'A' && c <= 'Z' ? static_cast<unsigned char>(c - 'A' + 'a') : static_cast<unsigned char>(c);
    };
    return lower(x) < lower(y);
  });
}

std::string resultLine(const ShellResult& result) {
  return "exit=" + std::to_string(result.exitCode) + " output='" + result.output + "'";
}

void writeFileReplacing(const std::string& folder, const std::string& fileName, const std::string& content) {
  std::string temporary = folder + "/." + fileName + ".XXXXXX";
  const int fd = ::mkstemp(temporary.data());
  if (fd < 0) throw std::runtime_error("cannot write in " + folder + ": " + std::strerror(errno));
  std::size_t written = 0;
  bool ok = true;
  while (written < content.size()) {
    const ssize_t n = ::write(fd, content.data() + written, content.size() - written);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) {
      ok = false;
      break;
    }
    written += static_cast<std::size_t>(n);
  }
  const int savedError = errno;
  ok = ::fchmod(fd, 0644) == 0 && ok;
  ok = ::close(fd) == 0 && ok;
  // Renamed into place, so a reader never sees half an entry, and a link standing at the
  // name is replaced rather than followed.
  if (!ok || ::rename(temporary.c_str(), (folder + "/" + fileName).c_str()) != 0) {
    const int error = ok ? errno : savedError;
    ::unlink(temporary.c_str());
    throw std::runtime_error("cannot write " + folder + "/" + fileName + ": " + std::strerror(error));
  }
}

} // namespace

StartupItemsService::StartupItemsService(platform::Platform platform, std::chrono::milliseconds readTimeLimit)
    : platform_(std::move(platform)), readTimeLimit_(readTimeLimit) {}

ShellResult StartupItemsService::runShell(const std::string& executable, const std::vector<std::string>& arguments,
                                          std::optional<std::chrono::milliseconds> timeLimit) const {
  for (const auto& argument : arguments) {
    if (argument.find('\0') != std::string::npos) throw std::invalid_argument("an argument holds a NUL byte");
  }
  platform::ProcessOutput output = platform_.processes->run(executable, arguments, timeLimit);
  if (!output.launched) throw std::runtime_error(executable + " could not be started");
  const auto decoded = [](const std::string& bytes) {
    return core::isValidUtf8(bytes) ? trimmed(bytes) : std::string();
  };
  const std::string out = decoded(output.standardOutput);
  const std::string err = decoded(output.standardError);
  ShellResult result;
  result.exitCode = output.timedOut ? -1 : output.exitStatus;
  result.timedOut = output.timedOut;
  if (err.empty()) result.output = out;
  else if (out.empty()) result.output = err;
  else result.output = out + "\nstderr: " + err;
  return result;
}

std::optional<std::string> StartupItemsService::readTool(const std::string& executable,
                                                         const std::vector<std::string>& arguments) const {
  try {
    ShellResult result = runShell(executable, arguments, readTimeLimit_);
    if (result.timedOut) return std::nullopt;
    return std::move(result.output);
  } catch (const std::exception&) {
    return std::nullopt;
  }
}

std::string StartupItemsService::userAutostartFolder() const { return platform_.paths.inHome(".config/autostart"); }

std::string StartupItemsService::systemAutostartFolder() const {
  return platform_.paths.system("/etc/xdg/autostart");
}

// ---- Reading ----------------------------------------------------------------------------

std::vector<StartupItem> StartupItemsService::scanLoginItems() {
  std::vector<StartupItem> items = scanSystemEventsItems();
  for (auto& item : scanAutostartEntries()) items.push_back(std::move(item));
  return items;
}

std::vector<StartupItem> StartupItemsService::scanSystemEventsItems() {
  std::vector<StartupItem> items;
  const auto output = readTool(kOsascript, {"-e", loginItemListScript()});
  if (!output) return items;
  for (auto& line : parseLoginItemList(*output)) {
    StartupItem item;
    item.id = "login-" + line.path;
    item.name = std::move(line.name);
    item.path = std::move(line.path);
    item.category = StartupItemCategory::loginItems;
    item.isEnabled = true;
    item.icon = resolveIcon(item.path);
    item.bundleIdentifier = bundleIdentifierAt(item.path);
    items.push_back(std::move(item));
  }
  return items;
}

std::vector<StartupItem> StartupItemsService::scanAutostartEntries() const {
  const std::string userFolder = userAutostartFolder();
  const std::string systemFolder = systemAutostartFolder();
  // File name to the folder it is read from: an entry of the user hides the system's entry of
  // the same name, whatever either says.
  std::map<std::string, std::string> entries;
  for (const auto& folder : {systemFolder, userFolder}) {
    for (auto& name : listFolder(folder)) {
      if (name.ends_with(".desktop") && isRegularFile(folder + "/" + name)) entries[name] = folder;
    }
  }
  std::vector<StartupItem> items;
  for (const auto& [fileName, folder] : entries) {
    const std::string path = folder + "/" + fileName;
    const auto text = readSmallFile(path);
    if (!text) continue;
    const auto entry = parseDesktopEntry(*text);
    if (!entry) continue;
    StartupItem item;
    item.id = "login-" + path;
    item.name = entry->text("Name").value_or("");
    if (trimmed(item.name).empty()) item.name = fileName.substr(0, fileName.size() - 8);
    item.path = path;
    item.category = StartupItemCategory::loginItems;
    item.isEnabled = desktopEntryIsEnabled(*entry);
    if (const auto icon = entry->text("Icon")) item.icon = iconNamed(*icon);
    items.push_back(std::move(item));
  }
  return items;
}

EnabledStateSnapshot StartupItemsService::fetchEnabledStates() {
  EnabledStateSnapshot states;
  const std::pair<std::string, std::map<std::string, bool>*> domains[] = {
      {"gui/" + platform::currentUserId(), &states.userOverrides}, {"system", &states.systemOverrides}};
  for (const auto& [domain, overrides] : domains) {
    // A domain that cannot be read keeps its table empty.
    if (const auto output = readTool(kLaunchctl, {"print-disabled", domain})) *overrides = parseDisabledServices(*output);
  }
  // Without the dump, agents and daemons fall back to their overrides.
  if (const auto output = readTool(kSfltool, {"dumpbtm"})) {
    BackgroundTaskDump dump = parseBackgroundTaskDump(*output);
    states.btmParentDisabled = std::move(dump.parentDisabled);
    states.btmNamedParentDisabled = std::move(dump.namedParentDisabled);
    states.btmNames = std::move(dump.names);
  }
  return states;
}

std::vector<StartupItem> StartupItemsService::scanLaunchAgents(const ProgressCallback& onProgress) {
  const EnabledStateSnapshot states = fetchEnabledStates();
  std::vector<StartupItem> items;
  scanLaunchdJobs(states, onProgress, items);
  scanServices(false, onProgress, items);
  scanServices(true, onProgress, items);
  std::stable_sort(items.begin(), items.end(),
                   [](const StartupItem& a, const StartupItem& b) { return lessIgnoringCase(a.name, b.name); });
  return items;
}

void StartupItemsService::scanLaunchdJobs(const EnabledStateSnapshot& states, const ProgressCallback& onProgress,
                                          std::vector<StartupItem>& items) const {
  struct Root {
    std::string path;
    bool daemons;
  };
  const Root roots[] = {{platform_.paths.inHome("Library/LaunchAgents"), false},
                        {platform_.paths.system("/Library/LaunchAgents"), false},
                        {platform_.paths.system("/Library/LaunchDaemons"), true}};
  std::set<std::string> seen;
  for (const auto& root : roots) {
    for (const auto& fileName : listFolder(root.path)) {
      if (!fileName.ends_with(".plist")) continue;
      if (onProgress) onProgress("Checking " + fileName + "\u2026");
      const std::string plistPath = root.path + "/" + fileName;
      const auto bytes = readSmallFile(plistPath);
      if (!bytes) continue;
      const auto label = platform::propertyListString(*bytes, "Label");
      if (!label) continue;
      // The first folder that has a label wins: the user's own agent over the machine's.
      if (!seen.insert(*label).second) continue;

      const auto exec = resolveExecutablePath({platform::propertyListString(*bytes, "Program"),
                                               platform::propertyListStringArray(*bytes, "ProgramArguments")});
      JobAppInfo app = resolveAppInfo(exec, *label);
      if (!states.btmNames.empty()) {
        if (const auto named = states.btmNames.find(*label); named != states.btmNames.end()) app.name = named->second;
      }

      StartupItem item;
      item.id = "agent-" + *label;
      item.name = app.name + (root.daemons ? " Service" : " Agent");
      item.path = app.appPath ? *app.appPath : exec ? *exec : plistPath;
      item.category = StartupItemCategory::launchAgents;
      // Agents: the user's override outranks the dump, whose "Unknown Developer" still counts.
      // Daemons: a named developer switched off in the dump outranks the system's override.
      if (!root.daemons) {
        const auto found = states.userOverrides.find(*label);
        item.isEnabled = found != states.userOverrides.end() ? found->second : !states.btmParentDisabled.contains(*label);
      } else if (states.btmNamedParentDisabled.contains(*label)) {
        item.isEnabled = false;
      } else {
        const auto found = states.systemOverrides.find(*label);
        item.isEnabled = found != states.systemOverrides.end() ? found->second : true;
      }
      item.icon = resolveIcon(item.path);
      if (app.appPath) item.bundleIdentifier = bundleIdentifierAt(*app.appPath);
      item.plistPath = plistPath;
      item.label = *label;
      items.push_back(std::move(item));
    }
  }
}

std::vector<std::string> StartupItemsService::unitFolders(bool systemScope) const {
  const auto& paths = platform_.paths;
  if (systemScope) {
    return {paths.system("/etc/systemd/system"), paths.system("/usr/local/lib/systemd/system"),
            paths.system("/usr/lib/systemd/system"), paths.system("/lib/systemd/system")};
  }
  return {paths.inHome(".config/systemd/user"), paths.system("/etc/systemd/user"),
          paths.inHome(".local/share/systemd/user"), paths.system("/usr/local/lib/systemd/user"),
          paths.system("/usr/lib/systemd/user"), paths.system("/lib/systemd/user")};
}

ShellResult StartupItemsService::runSystemctl(const std::vector<std::string>& arguments,
                                              std::optional<std::chrono::milliseconds> timeLimit) const {
  for (const char* systemctl : kSystemctlPaths) {
    try {
      return runShell(systemctl, arguments, timeLimit);
    } catch (const std::runtime_error&) {
      // Try the next place it may be.
    }
  }
  throw std::runtime_error("systemctl could not be started");
}

void StartupItemsService::scanServices(bool systemScope, const ProgressCallback& onProgress,
                                       std::vector<StartupItem>& items) const {
  std::vector<std::string> arguments{"list-unit-files", "--type=service", "--no-legend"};
  if (!systemScope) arguments.insert(arguments.begin(), "--user");
  ShellResult listing;
  try {
    listing = runSystemctl(arguments, readTimeLimit_);
  } catch (const std::exception&) {
    return;
  }
  if (listing.timedOut) return;
  const auto folders = unitFolders(systemScope);
  for (const auto& row : parseUnitFileList(listing.output)) {
    // Only what enable and disable can switch: not static, generated or masked units, and not
    // templates, which need an instance name first.
    const bool switchable = row.state == "enabled" || row.state == "enabled-runtime" || row.state == "disabled";
    if (!switchable || row.unit.find('@') != std::string::npos || !isPlainFileName(row.unit)) continue;
    if (onProgress) onProgress("Checking " + row.unit + "\u2026");
    std::optional<std::string> unitPath;
    for (const auto& folder : folders) {
      if (isRegularFile(folder + "/" + row.unit)) {
        unitPath = folder + "/" + row.unit;
        break;
      }
    }
    if (!unitPath) continue;
    const UnitFileSummary summary = parseUnitFile(readSmallFile(*unitPath).value_or(""));
    StartupItem item;
    item.id = "agent-" + row.unit;
    item.name = summary.description.value_or(row.unit.substr(0, row.unit.size() - 8)) +
                (systemScope ? " Service" : " Agent");
    item.path = summary.program ? *summary.program : *unitPath;
    item.category = StartupItemCategory::launchAgents;
    item.isEnabled = row.state.starts_with("enabled");
    item.icon = resolveIcon(item.path);
    item.plistPath = unitPath;
    item.label = row.unit;
    items.push_back(std::move(item));
  }
}

std::optional<std::string> StartupItemsService::resolveExecutablePath(const LaunchdProgram& job) {
  if (job.program) return job.program;
  if (job.programArguments && !job.programArguments->empty()) return job.programArguments->front();
  return std::nullopt;
}

JobAppInfo StartupItemsService::resolveAppInfo(const std::optional<std::string>& executablePath,
                                               const std::string& label) {
  if (executablePath) {
    std::string path = parentOf(*executablePath);
    for (int step = 0; step < 6; ++step) {
      if (path.ends_with(".app")) {
        const std::string bundle = lastComponent(path);
        return {bundle.substr(0, bundle.size() - 4), path};
      }
      const std::string parent = parentOf(path);
      if (parent == path) break;
      path = parent;
    }
  }
  const auto dot = label.find_last_of('.');
  return {capitalised(dot == std::string::npos ? label : label.substr(dot + 1)), std::nullopt};
}

std::optional<std::string> StartupItemsService::resolveIcon(const std::string& path) const {
  if (path.empty() || path.front() != '/') return std::nullopt;
  const auto onDisk = [&](const std::string& p) { return platform_.paths.system(p); };
  if (path.ends_with(".app") && exists(onDisk(path))) return onDisk(path);
  std::string current = parentOf(path);
  for (int step = 0; step < 6; ++step) {
    if (current.ends_with(".app") && exists(onDisk(current))) return onDisk(current);
    const std::string parent = parentOf(current);
    if (parent == current) break;
    current = parent;
  }
  if (exists(onDisk(path))) return onDisk(path);
  return std::nullopt;
}

std::optional<std::string> StartupItemsService::bundleIdentifierAt(const std::string& appPath) const {
  if (appPath.empty() || appPath.front() != '/') return std::nullopt;
  const auto bytes = readSmallFile(platform_.paths.system(appPath) + "/Contents/Info.plist");
  if (!bytes) return std::nullopt;
  return platform::propertyListString(*bytes, "CFBundleIdentifier");
}

std::optional<std::string> StartupItemsService::iconNamed(const std::string& iconName) const {
  if (iconName.starts_with('/')) {
    const std::string onDisk = platform_.paths.system(iconName);
    return isRegularFile(onDisk) ? std::optional<std::string>(onDisk) : std::nullopt;
  }
  // A theme name is looked up, never used as a path: "../x" names nothing.
  if (!isPlainFileName(iconName)) return std::nullopt;
  const auto& paths = platform_.paths;
  const std::string themes[] = {paths.inHome(".local/share/icons/hicolor"), paths.system("/usr/share/icons/hicolor")};
  for (const auto& theme : themes) {
    for (const char* size : {"scalable", "256x256", "128x128", "64x64", "48x48", "32x32"}) {
      for (const char* extension : {".svg", ".png"}) {
        const std::string candidate = theme + "/" + size + "/apps/" + iconName + extension;
        if (isRegularFile(candidate)) return candidate;
      }
    }
  }
  for (const char* extension : {".svg", ".png"}) {
    const std::string candidate = paths.system("/usr/share/pixmaps") + "/" + iconName + extension;
    if (isRegularFile(candidate)) return candidate;
  }
  return std::nullopt;
}

// ---- Switching --------------------------------------------------------------------------

void StartupItemsService::toggleLoginItem(const std::string& name, const std::string& path, bool enable) {
  const std::string folder = parentOf(path);
  const std::string fileName = lastComponent(path);
  if ((folder == userAutostartFolder() || folder == systemAutostartFolder()) && fileName.ends_with(".desktop") &&
      isPlainFileName(fileName)) {
    switchAutostartEntry(fileName, enable);
    return;
  }
  // System Events answers with an error text when the item is gone or the path is no
  // application; neither is a failure of the switch.
  runShell(kOsascript, {"-e", loginItemSwitchScript(name, path, enable)}, std::nullopt);
}

void StartupItemsService::switchAutostartEntry(const std::string& fileName, bool enable) const {
  const std::string userFolder = userAutostartFolder();
  const std::string userPath = userFolder + "/" + fileName;
  const std::string systemPath = systemAutostartFolder() + "/" + fileName;
  const auto userText = isRegularFile(userPath) ? readSmallFile(userPath) : std::nullopt;
  const auto systemText = isRegularFile(systemPath) ? readSmallFile(systemPath) : std::nullopt;
  if (!userText && !systemText) throw std::runtime_error("no autostart entry " + fileName);

  const auto systemEntry = systemText ? parseDesktopEntry(*systemText) : std::nullopt;
  const bool systemOnByItself = systemEntry && desktopEntryIsEnabled(*systemEntry);
  if (enable && userText) {
    // The user's entry only switched the system's off: taking it away gives the system's
    // entry back as it is. Any other change of the user's stays, switched on.
    const auto userEntry = parseDesktopEntry(*userText);
    if (systemOnByItself && userEntry && sameApartFromSwitch(*userEntry, *systemEntry)) {
      if (::unlink(userPath.c_str()) != 0 && errno != ENOENT) {
        throw std::runtime_error("cannot remove " + userPath + ": " + std::strerror(errno));
      }
      return;
    }
  }
  if (enable && !userText && systemOnByItself) return;
  // The system's entry is never written: the user's copy of it overrides it by its name.
  const std::string& base = userText ? *userText : *systemText;
  if (::mkdir(platform_.paths.inHome(".config").c_str(), 0700) != 0 && errno != EEXIST) {
    throw std::runtime_error("cannot create " + platform_.paths.inHome(".config") + ": " + std::strerror(errno));
  }
  if (::mkdir(userFolder.c_str(), 0755) != 0 && errno != EEXIST) {
    throw std::runtime_error("cannot create " + userFolder + ": " + std::strerror(errno));
  }
  writeFileReplacing(userFolder, fileName, desktopEntryWithSwitch(base, enable));
}

std::string StartupItemsService::toggleLaunchAgent(const std::string& label, const std::string& plistPath,
                                                   bool enable) {
  return switchJob(label, plistPath, enable).log;
}

SwitchReport StartupItemsService::switchJob(const std::string& label, const std::string& plistPath, bool enable) {
  if (plistPath.ends_with(".plist")) return switchLaunchdJob(label, plistPath, enable);
  const std::string folder = parentOf(plistPath);
  for (const bool systemScope : {false, true}) {
    const auto folders = unitFolders(systemScope);
    if (std::find(folders.begin(), folders.end(), folder) != folders.end()) {
      return switchService(label, plistPath, systemScope, enable);
    }
  }
  throw std::invalid_argument("neither a launchd job nor a systemd service: " + plistPath);
}

SwitchReport StartupItemsService::switchLaunchdJob(const std::string& label, const std::string& plistPath,
                                                   bool enable) {
  const bool systemJob = plistPath.starts_with(platform_.paths.system("/Library/LaunchDaemons"));
  const std::string domain = systemJob ? "system" : "gui/" + platform::currentUserId();
  const std::string target = domain + "/" + label;
  const std::string sub = enable ? "enable" : "disable";
  const std::string boot = enable ? "bootstrap" : "bootout";
  SwitchReport report;
  report.log = "Toggle " + label + ": enable=" + (enable ? "true" : "false") + ", domain=" + domain +
               ", plist=" + plistPath + "\n";

  if (systemJob) {
    const std::string line = launchctlSwitchLine(kLaunchctl, domain, label, plistPath, enable);
    if (!core::isValidUtf8(line)) throw std::invalid_argument("the label or path is not UTF-8");
    // One script, one password prompt, for both commands.
    const ShellResult result = runShell(kOsascript, {"-e", platform::administratorScript(line)}, std::nullopt);
    report.log += "  admin launchctl " + sub + " + " + boot + " \u2192 " + resultLine(result) + "\n";
    return report;
  }
  // The persistent switch first, then the load or unload, the second whatever the first gave.
  try {
    const ShellResult result = runShell(kLaunchctl, {sub, target}, kSwitchTimeLimit);
    report.log += "  launchctl " + sub + " " + target + " \u2192 " + resultLine(result) + "\n";
  } catch (const std::exception& error) {
    report.log += "  launchctl " + sub + " failed: " + error.what() + "\n";
    report.allStarted = false;
  }
  try {
    const ShellResult result = runShell(kLaunchctl, {boot, domain, plistPath}, kSwitchTimeLimit);
    report.log += "  launchctl " + boot + " \u2192 " + resultLine(result) + "\n";
  } catch (const std::exception& error) {
    report.log += "  launchctl " + boot + " failed: " + error.what() + "\n";
    report.allStarted = false;
  }
  return report;
}

SwitchReport StartupItemsService::switchService(const std::string& label, const std::string& unitPath,
                                                bool systemScope, bool enable) {
  if (!isPlainFileName(label) || !label.ends_with(".service")) {
    throw std::invalid_argument("not a service unit name: " + label);
  }
  const std::string sub = enable ? "enable" : "disable";
  SwitchReport report;
  report.log = "Toggle " + label + ": enable=" + (enable ? "true" : "false") + ", domain=" +
               (systemScope ? "system" : "user") + ", unit=" + unitPath + "\n";
  if (systemScope) {
    // The system's services change only with the administrator's rights: one prompt.
    const std::string line = systemctlSwitchLine(kSystemctlPaths[0], label, enable);
    const ShellResult result = runShell(kPkexec, {kShell, "-c", line}, std::nullopt);
    report.log += "  admin systemctl " + sub + " --now \u2192 " + resultLine(result) + "\n";
    return report;
  }
  try {
    const ShellResult result = runSystemctl({"--user", sub, "--now", "--", label}, kSwitchTimeLimit);
    report.log += "  systemctl --user " + sub + " --now " + label + " \u2192 " + resultLine(result) + "\n";
  } catch (const std::exception& error) {
    report.log += "  systemctl --user " + sub + " failed: " + error.what() + "\n";
    report.allStarted = false;
  }
  return report;
}

} // namespace halcyra::startup
