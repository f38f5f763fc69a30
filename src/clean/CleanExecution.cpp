#include <chrono>
#include <cstdint>
#include <unordered_set>

#include "clean/NativeCleanService.h"
#include "platform/PrivilegedHelper.h"
#include "platform/SafeRemove.h"

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

/// An item refused for lack of rights, with what it was when it was refused.
struct NeedsRights {
  CleanItem item;
  platform::PrivilegedItem target;
};

constexpr const char* kNotGranted = "administrator access was not granted";

// The items that were refused for lack of rights, to the privileged helper behind one prompt.
// Only what the helper reports removed counts; it removes an item only while it is still the
// very file or folder that was refused here.
Freed cleanWithPrivileges(platform::PrivilegedRunner* privileged, const std::vector<NeedsRights>& items,
                          const StatusCallback& report, std::vector<CleanFailure>& failures) {
  std::vector<platform::PrivilegedItem> targets;
  targets.reserve(items.size());
  for (const auto& entry : items) targets.push_back(entry.target);
  const platform::HelperBatch batch =
      privileged != nullptr ? platform::removeWithPrivileges(*privileged, targets) : platform::HelperBatch{};
  if (!batch.granted) {
    report("Admin access was not granted — skipped system files");
    for (const auto& entry : items) failures.push_back({entry.item.path, kNotGranted});
    return {};
  }
  Freed freed;
  for (std::size_t i = 0; i < items.size(); ++i) {
    const platform::HelperReport& outcome = batch.reports[i];
    switch (outcome.outcome) {
    case platform::HelperOutcome::removed: freed.add(items[i].item); break;
    case platform::HelperOutcome::gone: break;
    case platform::HelperOutcome::failed: failures.push_back({items[i].item.path, outcome.reason}); break;
    }
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
  std::vector<CleanFailure> failures;
  std::vector<NeedsRights> needRights;
  // A path listed in two categories is one item: removed once, counted once.
  std::unordered_set<std::string> handled;
  for (const auto& item : items) {
    if (!handled.insert(item.path).second) continue;
    // Interrupted: the item in hand was finished, the rest stay, and the result says what went.
    if (platform_.stopRequested()) break;
    report("Removing " + lastComponent(item.path) + "...");
    if (!trashPath.empty() && item.path == trashPath) {
      if (platform_.trash->empty()) freed.add(item);
      else failures.push_back({item.path, "the Trash could not be emptied"});
      continue;
    }
    if (isProtectedFolder(item.path, platform_.paths)) {
      failures.push_back({item.path, "is the home or the system folder, or holds it; never removed"});
      continue;
    }
    const platform::Removal removal = platform::removeItemExplained(item.path);
    switch (removal.outcome) {
    case platform::RemoveOutcome::removed: freed.add(item); break;
    case platform::RemoveOutcome::alreadyGone: break;
    case platform::RemoveOutcome::permissionDenied:
      // What was refused is described now, from the same no-follow walk, and the helper acts
      // only on that. An item gone meanwhile is not sent.
      if (const auto identity = platform::identify(item.path)) {
        needRights.push_back({item, platform::PrivilegedItem{item.path, *identity}});
      }
      break;
    case platform::RemoveOutcome::failed: failures.push_back({item.path, removal.reason}); break;
    }
  }

  if (!needRights.empty() && !platform_.stopRequested()) {
    report("Requesting admin access for system files...");
    const Freed privileged = cleanWithPrivileges(platform_.privileged.get(), needRights, report, failures);
    freed.bytes += privileged.bytes;
    freed.items += privileged.items;
  }

  report("Cleanup complete");
  CleanResult result;
  result.freedBytes = freed.bytes;
  result.itemsCleaned = freed.items;
  result.duration = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  result.failedItems = std::move(failures);
  return result;
}

} // namespace halcyra::clean
