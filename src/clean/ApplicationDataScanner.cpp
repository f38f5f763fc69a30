#include "clean/ApplicationDataScanner.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <string_view>

#include "platform/RunningApplications.h"

namespace halcyra::clean {
namespace {

constexpr std::array<std::string_view, 5> kChromiumProfileCleanableDirs{
    "GPUCache", "ShaderCache", "GrShaderCache", "GraphiteDawnCache", "Service Worker/ScriptCache"};

constexpr std::array<std::string_view, 6> kGroupContainerJunk{"Logs", "Library/Logs", "Caches",
                                                              "Library/Caches", "tmp", "Library/tmp"};

const std::set<std::string>& acceptedAppleContainers() {
  static const std::set<std::string> names{"com.apple.AppStore",
                                           "com.apple.wallpaper.agent",
                                           "com.apple.mediaanalysisd",
                                           "com.apple.stocks",
                                           "com.apple.AvatarUI.AvatarPickerMemojiPicker",
                                           "com.apple.AMPArtworkAgent",
                                           "com.apple.CoreDevice.CoreDeviceService"};
  return names;
}

// Application Support folders that catalogue rows cover or that must never be touched.
const std::set<std::string>& applicationSupportLeftAlone() {
  static const std::set<std::string> names{
      "Code",         "Cursor",        "Claude",       "Codex",     "discord",
      "legcord",      "Slack",         "Steam",        "Battle.net", "minecraft",
      "Google",       "BraveSoftware", "Firefox",      "Microsoft", "Microsoft Teams",
      "CrashReporter", "MobileSync",   "com.apple.sharedfilelist", "com.apple.idleassetsd",
      "com.apple.wallpaper", "Adobe",  "com.bohemiancoding.sketch3", "JetBrains", "stremio",
      "Antigravity",  "Filo",          "Qoder",        "iDingTalk", "mihomo-party",
      "WeType",       "net.imput.helium", "Yandex"};
  return names;
}

// Apple's own data and the vaults of password managers and a security tool.
constexpr std::array<std::string_view, 6> kApplicationSupportLeftAlonePrefixes{
    "com.apple.", "com.crowdstrike.", "com.1password.", "com.bitwarden.", "com.lastpass.", "com.keepass."};

constexpr std::array<std::string_view, 5> kApplicationSupportJunk{"log", "logs", "activitylog", "Cache/Cache_Data",
                                                                  "Crashpad/completed"};

constexpr std::array<std::string_view, 6> kBundleIdentifierPrefixes{"com.", "org.", "net.", "io.", "me.", "dev."};

constexpr std::array<std::string_view, 16> kOrphanProtectedPrefixes{
    "com.apple.",          "com.crowdstrike.",    "com.1password.",     "com.agilebits.",
    "com.bitwarden.",      "com.lastpass.",       "com.keepass.",       "com.dashlane.",
    "com.enpass.",         "com.microsoft.VSCode", "com.microsoft.Excel", "com.microsoft.Word",
    "com.microsoft.Powerpoint", "com.microsoft.Outlook", "com.microsoft.OneDrive", "com.microsoft.teams"};

constexpr std::array<std::string_view, 5> kOrphanFolders{"Library/Caches", "Library/Logs", "Library/HTTPStorages",
                                                         "Library/WebKit", "Library/Saved Application State"};

constexpr auto kOrphanAge = std::chrono::seconds(2'592'000);

template <std::size_t N>
bool startsWithAnyIgnoringCase(const std::string& name, const std::array<std::string_view, N>& prefixes) {
  return std::any_of(prefixes.begin(), prefixes.end(),
                     [&](std::string_view prefix) { return startsWithIgnoringCase(name, prefix); });
}

std::vector<DirectoryEntry> entriesOf(const std::string& path) {
  auto entries = listDirectory(path);
  return entries ? std::move(*entries) : std::vector<DirectoryEntry>{};
}

} // namespace

std::vector<CleanItem> ApplicationDataScanner::sorted(const std::vector<std::string>& candidates, bool selected) {
  auto items = context_.measuredItems(candidates, selected);
  sortBySize(items);
  return items;
}

ChromiumProfileItems ApplicationDataScanner::scanChromiumProfiles(const std::string& basePath) {
  std::vector<std::string> profiles;
  for (const auto& entry : entriesOf(basePath)) {
    if (entry.kind != PathKind::directory) continue;
    if (entry.name == "Default" || entry.name.starts_with("Profile ")) profiles.push_back(basePath + "/" + entry.name);
  }
  std::vector<std::string> safe, swCache;
  for (const auto& profile : profiles) {
    for (const auto cache : kChromiumProfileCleanableDirs) {
      if (isDirectoryBelow(profile, std::string(cache))) safe.push_back(profile + "/" + std::string(cache));
    }
  }
  for (const auto& profile : profiles) {
    if (isDirectoryBelow(profile, "Service Worker/CacheStorage")) swCache.push_back(profile + "/Service Worker/CacheStorage");
  }
  ChromiumProfileItems result;
  result.safe = sorted(safe, true);
  result.swCache = sorted(swCache, false);
  return result;
}

std::vector<CleanItem> ApplicationDataScanner::scanGroupContainers() {
  const std::string root = context_.paths().inHome("Library/Group Containers");
  std::vector<std::string> candidates;
  for (const auto& entry : entriesOf(root)) {
    const std::string lower = platform::toLowerAscii(entry.name);
    if (lower.starts_with("com.apple.") || lower.starts_with("group.com.apple.") ||
        lower.starts_with("systemgroup.com.apple.")) {
      continue;
    }
    const std::string container = root + "/" + entry.name;
    for (const auto junk : kGroupContainerJunk) {
      if (isDirectoryBelow(container, std::string(junk))) candidates.push_back(container + "/" + std::string(junk));
    }
  }
  return sorted(candidates, true);
}

std::vector<CleanItem> ApplicationDataScanner::scanSandboxedContainers() {
  const std::string root = context_.paths().inHome("Library/Containers");
  std::vector<std::string> candidates;
  for (const auto& entry : entriesOf(root)) {
    // Case matters here, unlike for group containers.
    if (entry.name.starts_with("com.apple.") && !acceptedAppleContainers().contains(entry.name)) continue;
    const std::string container = root + "/" + entry.name;
    if (isDirectoryBelow(container, "Data/Library/Caches")) candidates.push_back(container + "/Data/Library/Caches");
  }
  return sorted(candidates, true);
}

std::vector<CleanItem> ApplicationDataScanner::scanApplicationSupportLogs() {
  const std::string root = context_.paths().inHome("Library/Application Support");
  std::vector<std::string> candidates;
  for (const auto& entry : entriesOf(root)) {
    if (applicationSupportLeftAlone().contains(entry.name) || entry.name.starts_with(".")) continue;
    if (startsWithAnyIgnoringCase(entry.name, kApplicationSupportLeftAlonePrefixes)) continue;
    if (entry.kind != PathKind::directory) continue;
    const std::string folder = root + "/" + entry.name;
    for (const auto junk : kApplicationSupportJunk) {
      if (isDirectoryBelow(folder, std::string(junk))) candidates.push_back(folder + "/" + std::string(junk));
    }
  }
  return sorted(candidates, true);
}

std::vector<CleanItem> ApplicationDataScanner::scanDeviceSupportKeeping(std::size_t keep,
                                                                        const std::vector<std::string>& paths) {
  struct Note {
    std::string path;
    TimePoint modified;
  };
  std::vector<Note> notes;
  for (const auto& written : paths) {
    const std::string path = written.starts_with("~") ? context_.paths().expand(written) : written;
    for (const auto& entry : entriesOf(path)) {
      if (entry.name == ".DS_Store" || entry.name == ".localized" || entry.kind != PathKind::directory) continue;
      const std::string version = path + "/" + entry.name;
      notes.push_back(Note{version, modificationTime(version).value_or(TimePoint::min())});
    }
  }
  // One pool across all platforms: the versions kept are the newest overall.
  std::stable_sort(notes.begin(), notes.end(), [](const Note& a, const Note& b) { return a.modified > b.modified; });
  std::vector<std::string> candidates;
  for (std::size_t i = keep; i < notes.size(); ++i) candidates.push_back(notes[i].path);
  return context_.measuredItems(candidates, true);
}

std::vector<CleanItem> ApplicationDataScanner::scanSimulatorTempFiles() {
  const std::string devices = context_.paths().inHome("Library/Developer/CoreSimulator/Devices");
  std::vector<std::string> candidates;
  for (const auto& device : entriesOf(devices)) {
    const std::string deviceFolder = devices + "/" + device.name;
    if (!isDirectoryBelow(deviceFolder, "data/tmp")) continue;
    const std::string tmp = deviceFolder + "/data/tmp";
    for (const auto& entry : entriesOf(tmp)) {
      if (entry.name != ".DS_Store") candidates.push_back(tmp + "/" + entry.name);
    }
  }
  return context_.measuredItems(candidates, true);
}

std::vector<CleanItem> ApplicationDataScanner::scanOrphanedAppData(const std::set<std::string>& installedBundleIDs) {
  const TimePoint cutoff = context_.now() - kOrphanAge;
  std::vector<std::string> candidates;
  for (const auto folder : kOrphanFolders) {
    const std::string root = context_.paths().inHome(folder);
    const auto entries = listDirectory(root);
    if (!entries) continue;
    for (const auto& entry : *entries) {
      const std::string& name = entry.name;
      if (std::none_of(kBundleIdentifierPrefixes.begin(), kBundleIdentifierPrefixes.end(),
                       [&](std::string_view prefix) { return name.starts_with(prefix); })) {
        continue;
      }
      if (startsWithAnyIgnoringCase(name, kOrphanProtectedPrefixes)) continue;
      std::string identifier = name;
      if (identifier.ends_with(".savedState")) identifier.resize(identifier.size() - std::string_view(".savedState").size());
      if (installedBundleIDs.contains(identifier)) continue;
      // Related by prefix either way, with no separator required: a helper's identifier or a
      // shortened one belongs to the installed application.
      const bool related = std::any_of(installedBundleIDs.begin(), installedBundleIDs.end(), [&](const std::string& id) {
        return id.starts_with(identifier) || identifier.starts_with(id);
      });
      if (related) continue;
      const std::string path = root + "/" + name;
      if (isNewerThan(path, cutoff)) continue;
      candidates.push_back(path);
    }
  }
  return sorted(candidates, true);
}

} // namespace halcyra::clean
