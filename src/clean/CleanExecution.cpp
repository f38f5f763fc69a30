#include <chrono>
#include <cstdint>

#include "clean/NativeCleanService.h"
#include "platform/SafeRemove.h"
#include "platform/ShellQuoting.h"

namespace halcyra::clean {
namespace {

/// What a part of the clean freed.
struct Freed {
  std::int64_t bytes = 0;
  int items = 0;

  void add(const CleanItem& item) {
    bytes += item.size;
    ++items;
  }
};

// The name a status text shows: the last component, trailing slashes ignored.
std::string lastComponent(const std::string& path) {
  const auto end = path.find_last_not_of('/');
  if (end == std::string::npos) return path;
  const auto slash = path.rfind('/', end);
  const auto begin = slash == std::string::npos ? 0 : slash + 1;
  return path.substr(begin, end + 1 - begin);
}

// The home, the system root and every folder above them are never removed, whatever a list
// says: an entry that named one of them by mistake must not take all below with it.
bool isProtectedFolder(const std::string& path, const platform::SystemPaths& paths) {
  for (const std::string& folder : {paths.home(), paths.root()}) {
    if (!folder.empty() && (path == folder || folder.starts_with(path + "/"))) return true;
  }
  return false;
}

// The items that were refused for lack of rights, in one shell line behind one prompt. The
// figures come from a fresh look at each path afterwards, not from the answer of the line:
// only what is really gone counts.
Freed cleanWithPrivileges(platform::PrivilegedRunner* privileged, const std::vector<CleanItem>& items,
                          const StatusCallback& report) {
  std::vector<std::string> paths;
  paths.reserve(items.size());
  for (const auto& item : items) paths.push_back(item.path);
  // Items only reach this batch after the careful removal accepted their paths as plain.
  const std::string line = platform::removalShellLine(paths);
  if (privileged == nullptr || !privileged->runShellLine(line)) {
    report("Admin access was not granted — skipped system files");
    return {};
  }
  Freed freed;
  for (const auto& item : items) {
    if (platform::isGone(item.path)) freed.add(item);
  }
  return freed;
}

} // namespace

CleanResult NativeCleanService::clean(const std::vector<CleanItem>& items, const StatusCallback& onProgress) {
  const auto start = std::chrono::steady_clock::now();
  const auto report = [&](const std::string& text) {
    if (onProgress) onProgress(text);
  };
  // The Trash is one item that stands for all it holds: it is emptied, never removed.
  const std::string trashPath = platform_.trash ? platform_.trash->itemPath() : std::string();

  Freed freed;
  std::vector<CleanItem> needRights;
  for (const auto& item : items) {
    // Interrupted: the item in hand was finished, the rest stay, and the result says what went.
    if (platform_.stopRequested()) break;
    report("Removing " + lastComponent(item.path) + "...");
    if (!trashPath.empty() && item.path == trashPath) {
      if (platform_.trash->empty()) freed.add(item);
      continue;
    }
    if (isProtectedFolder(item.path, platform_.paths)) continue;
    switch (platform::removeItem(item.path)) {
    case platform::RemoveOutcome::removed: freed.add(item); break;
    case platform::RemoveOutcome::permissionDenied: needRights.push_back(item); break;
    case platform::RemoveOutcome::alreadyGone:
    case platform::RemoveOutcome::failed: break;
    }
  }

  if (!needRights.empty() && !platform_.stopRequested()) {
    report("Requesting admin access for system files...");
    const Freed privileged = cleanWithPrivileges(platform_.privileged.get(), needRights, report);
    freed.bytes += privileged.bytes;
    freed.items += privileged.items;
  }

  report("Cleanup complete");
  CleanResult result;
  result.freedBytes = freed.bytes;
  result.itemsCleaned = freed.items;
  result.duration = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  return result;
}

} // namespace halcyra::clean
