#include "clean/BackupScanner.h"

#include <chrono>

#include "clean/FileQueries.h"
#include "clean/ScanCatalogue.h"
#include "core/Utf8.h"
#include "platform/RunningApplications.h"

namespace halcyra::clean {
namespace {

constexpr auto kToolTimeLimit = std::chrono::seconds(5);
constexpr auto kMinimumAge = std::chrono::seconds(172'800);
// Entries this many levels below a backup root, or deeper, are never looked at.
constexpr int kBackupDepthLimit = 4;
const std::string kTmutil = "/usr/bin/tmutil";

std::vector<std::string> lines(const std::string& text) {
  std::vector<std::string> result;
  std::size_t start = 0;
  while (start <= text.size()) {
    auto end = text.find('\n', start);
    if (end == std::string::npos) end = text.size();
    result.push_back(text.substr(start, end - start));
    start = end + 1;
  }
  return result;
}

std::string trimmedBlanks(const std::string& text) {
  const auto first = text.find_first_not_of(" \t");
  if (first == std::string::npos) return {};
  const auto last = text.find_last_not_of(" \t");
  return text.substr(first, last - first + 1);
}

// "/Volumes/<name>..." with no "." or ".." component and no empty one.
bool isPlainVolumePath(const std::string& path) {
  if (!path.starts_with("/Volumes/")) return false;
  std::size_t start = 1;
  while (start <= path.size()) {
    auto end = path.find('/', start);
    if (end == std::string::npos) end = path.size();
    const std::string_view component(path.data() + start, end - start);
    if (component.empty() || component == "." || component == "..") return false;
    start = end + 1;
  }
  return true;
}

bool isInProgressName(const std::string& name) {
  return name.ends_with(".inProgress") || name.ends_with(".inprogress");
}

} // namespace

std::optional<std::string> BackupScanner::output(const std::string& tool, const std::vector<std::string>& arguments) {
  return runner_.outputText(tool, arguments, kToolTimeLimit);
}

std::set<std::string> BackupScanner::parseNetworkMountPoints(const std::string& dfOutput) {
  std::set<std::string> mountPoints;
  for (const auto& line : lines(dfOutput)) {
    // Nine fields at blanks, the ninth holding the rest of the line: a mount point may
    // contain blanks of its own.
    std::vector<std::string> fields;
    std::size_t position = 0;
    while (fields.size() < 9) {
      position = line.find_first_not_of(' ', position);
      if (position == std::string::npos) break;
      if (fields.size() == 8) {
        fields.push_back(line.substr(position));
        break;
      }
      auto end = line.find(' ', position);
      if (end == std::string::npos) end = line.size();
      fields.push_back(line.substr(position, end - position));
      position = end;
    }
    if (fields.size() < 9) continue;
    if (networkFilesystemTypes().contains(platform::toLowerAscii(fields[1]))) mountPoints.insert(fields[8]);
  }
  return mountPoints;
}

std::set<std::string> BackupScanner::detectNetworkMountPoints() {
  const auto text = output("/bin/df", {"-T"});
  if (!text) return {};
  return parseNetworkMountPoints(*text);
}

std::vector<std::string> BackupScanner::parseMountedBundlePaths(const std::string& hdiutilInfo,
                                                               const std::string& bundleName) {
  std::vector<std::string> paths;
  if (bundleName.empty()) return paths;
  bool inside = false;
  for (const auto& line : lines(hdiutilInfo)) {
    const bool namesBundle = line.find(bundleName) != std::string::npos;
    if (namesBundle) inside = true;
    if (!inside) continue;
    if (line.find("/Volumes/") != std::string::npos) {
      std::string path = trimmedBlanks(line);
      if (isPlainVolumePath(path)) paths.push_back(std::move(path));
    } else if (!namesBundle && line.find("image-path") != std::string::npos) {
      inside = false; // the next image has begun
    }
  }
  return paths;
}

bool BackupScanner::reportsNoDestination(const std::string& destinationInfo) {
  return core::isValidUtf8(destinationInfo) && destinationInfo.find("No destinations configured") != std::string::npos;
}

bool BackupScanner::reportsRunningBackup(const std::string& status) {
  return status.find("Running = 1") != std::string::npos || status.find("\"Running\" = 1") != std::string::npos;
}

std::optional<std::string> BackupScanner::findMountedBundlePath(const std::string& bundleName) {
  const auto text = output("/usr/bin/hdiutil", {"info"});
  if (!text) return std::nullopt;
  for (auto& path : parseMountedBundlePaths(*text, bundleName)) {
    if (pathKind(context_.paths().system(path)) != PathKind::missing) return std::move(path);
  }
  return std::nullopt;
}

void BackupScanner::findInProgressBackups(const std::string& root, TimePoint cutoff, std::vector<std::string>& into) {
  struct Pending {
    std::string path;
    int depth; // of the folder's entries
  };
  std::vector<Pending> stack{{root, 1}};
  while (!stack.empty()) {
    const Pending folder = std::move(stack.back());
    stack.pop_back();
    const auto entries = listDirectory(folder.path);
    if (!entries) continue;
    std::vector<Pending> descend;
    for (const auto& entry : *entries) {
      if (entry.kind != PathKind::directory) continue;
      std::string path = folder.path + "/" + entry.name;
      if (isInProgressName(entry.name)) {
        if (!isNewerThan(path, cutoff)) into.push_back(std::move(path));
        continue;
      }
      if (folder.depth + 1 < kBackupDepthLimit) descend.push_back(Pending{std::move(path), folder.depth + 1});
    }
    stack.insert(stack.end(), std::make_move_iterator(descend.rbegin()), std::make_move_iterator(descend.rend()));
  }
}

std::vector<CleanItem> BackupScanner::scanTimeMachineIncomplete() {
  // The first run doubles as the test whether the tool is there at all.
  const auto destinations = runner_.run(kTmutil, {"destinationinfo"}, kToolTimeLimit);
  if (!destinations.launched) return {};
  if (!destinations.timedOut && reportsNoDestination(destinations.standardOutput)) return {};
  if (const auto status = output(kTmutil, {"status"}); status && reportsRunningBackup(*status)) return {};

  std::set<std::string> networkVolumes;
  for (const auto& mountPoint : detectNetworkMountPoints()) networkVolumes.insert(context_.paths().system(mountPoint));
  const TimePoint cutoff = context_.now() - kMinimumAge;

  std::vector<std::string> candidates;
  const std::string volumes = context_.paths().system("/Volumes");
  const auto entries = listDirectory(volumes);
  if (entries) {
    for (const auto& entry : *entries) {
      if (entry.name == "MacintoshHD") continue;
      const std::string volume = volumes + "/" + entry.name;
      // A link to a volume (the system volume's own entry among them) is passed over.
      if (pathKind(volume) != PathKind::directory) continue;
      if (networkVolumes.contains(volume)) continue;
      if (isDirectoryBelow(volume, "Backups.backupdb")) findInProgressBackups(volume + "/Backups.backupdb", cutoff, candidates);
      if (isDirectoryBelow(volume, ".MobileBackups")) findInProgressBackups(volume + "/.MobileBackups", cutoff, candidates);
      const auto contents = listDirectory(volume);
      if (!contents) continue;
      for (const auto& bundle : *contents) {
        if (bundle.kind != PathKind::directory) continue;
        if (!bundle.name.ends_with(".backupbundle") && !bundle.name.ends_with(".sparsebundle")) continue;
        if (const auto mounted = findMountedBundlePath(bundle.name)) {
          findInProgressBackups(context_.paths().system(*mounted), cutoff, candidates);
        }
      }
    }
  }
  auto items = context_.measuredItems(candidates, false);
  sortBySize(items);
  return items;
}

} // namespace halcyra::clean
