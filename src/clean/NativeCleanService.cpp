#include "clean/NativeCleanService.h"

#include <chrono>

#include "clean/ApplicationDataScanner.h"
#include "clean/BackupScanner.h"
#include "clean/BundleIdentifiers.h"
#include "clean/CatalogueScanner.h"
#include "clean/KeepList.h"
#include "clean/ProjectArtifactScanner.h"
#include "clean/ScanCatalogue.h"
#include "clean/ScanContext.h"
#include "core/Uuid.h"
#include "platform/FullDiskAccessChecker.h"
#include "platform/RunningApplications.h"
#include "platform/TreeSize.h"

namespace halcyra::clean {
namespace {

// Measuring is spread over two workers; everything else of the scan runs in order on the
// calling thread, so texts and results come out as from a walk one item after the other.
constexpr unsigned kMeasuringThreads = 2;
constexpr std::int64_t kMailDownloadsMinimum = 5'242'880;

CleanCategory makeCategory(std::string name, std::string icon, std::string section, std::vector<CleanItem> items,
                           bool isSelected, bool isWhitelisted) {
  CleanCategory category;
  category.id = core::makeUuid();
  category.name = std::move(name);
  category.icon = std::move(icon);
  category.section = std::move(section);
  category.items = std::move(items);
  category.isSelected = isSelected;
  category.isWhitelisted = isWhitelisted;
  return category;
}

std::int64_t totalSize(const std::vector<CleanItem>& items) {
  std::int64_t total = 0;
  for (const auto& item : items) total += item.size;
  return total;
}

// The Trash is one item that stands for all of it; emptying it is the Trash's own business.
std::optional<CleanCategory> trashCategory(platform::Trash* trash) {
  if (trash == nullptr) return std::nullopt;
  const auto summary = trash->summary();
  if (!summary || summary->itemCount < 1) return std::nullopt;
  const std::string count =
      std::to_string(summary->itemCount) + (summary->itemCount == 1 ? " item" : " items");
  CleanCategory category = makeCategory("Trash (" + count + ")", "trash", "User", {}, true, false);
  category.items.push_back(CleanItem{core::makeUuid(), trash->itemPath(), summary->totalSize, true});
  return category;
}

} // namespace

NativeCleanService::NativeCleanService(platform::Platform platform) : platform_(std::move(platform)) {}

std::vector<CategoryName> NativeCleanService::categoryNames() {
  std::vector<CategoryName> names;
  for (const auto& row : catalogueRows()) names.push_back({row.name, row.isWhitelisted});
  for (const auto& browser : chromiumBrowsers()) {
    names.push_back({browser.name + " Profile Caches", false});
    names.push_back({browser.name + " SW Cache", true});
  }
  // As scan() below names them.
  for (const char* name : {"Simulator Temp Files", "Group Container Caches", "Sandboxed App Caches",
                           "App Support Logs & Caches", "Orphaned App Data"}) {
    names.push_back({name, false});
  }
  names.push_back({"Project Build Artifacts", true});
  names.push_back({"Incomplete TM Backups", true});
  return names;
}

std::vector<CleanCategory> NativeCleanService::scan(const StatusCallback& onProgress) {
  const auto report = [&](const std::string& text) {
    if (onProgress) onProgress(text);
  };
  const platform::SystemPaths& paths = platform_.paths;
  const std::vector<ScanTarget> targets = scanTargets(paths);
  platform::TreeSizer sizer(kMeasuringThreads);
  ScanContext context(paths, sizer, std::chrono::system_clock::now());
  CatalogueScanner catalogue(context, targets);
  const std::set<std::string> running =
      platform_.runningApps ? platform_.runningApps->snapshotRunningAppNames() : std::set<std::string>{};
  const bool hasFullDiskAccess = platform::FullDiskAccessChecker(paths).hasFullDiskAccess();
  ApplicationDataScanner applicationData(context);

  std::vector<CleanCategory> categories;
  const auto appendIfAny = [&](std::vector<CleanItem> items, const char* name, const char* icon, const char* section,
                               bool selected, bool whitelisted) {
    if (!items.empty()) categories.push_back(makeCategory(name, icon, section, std::move(items), selected, whitelisted));
  };

  for (const auto& target : targets) {
    if (target.requiresFDA && !hasFullDiskAccess) continue;
    if (target.section == "System" && !platform_.macSystemLayout) continue;
    report("Scanning " + target.name + "...");
    if (target.name == "Trash") {
      if (auto trash = trashCategory(platform_.trash.get())) categories.push_back(std::move(*trash));
      continue;
    }
    if (!target.skipWhenRunning.empty()) {
      if (const auto process = platform::firstRunningProcess(target.skipWhenRunning, running)) {
        report("Skipped " + target.name + " · " + *process + " is running");
        CleanCategory skipped = makeCategory(target.name, target.icon, target.section, {}, false, false);
        skipped.skipReason = *process + " is running";
        categories.push_back(std::move(skipped));
        continue;
      }
    }
    std::optional<TimePoint> cutoff;
    if (const auto age = ageFilteredTargets().find(target.name); age != ageFilteredTargets().end()) {
      cutoff = context.now() - std::chrono::seconds(age->second);
    }
    if (target.name == "Xcode Device Support") {
      auto items = applicationData.scanDeviceSupportKeeping(2, target.paths);
      if (!items.empty()) {
        categories.push_back(makeCategory(target.name, target.icon, target.section, std::move(items), true, false));
      }
      continue;
    }
    std::vector<CleanItem> items = catalogue.collect(target, cutoff);
    sortBySize(items);
    if (target.name == "Mail Downloads" && totalSize(items) < kMailDownloadsMinimum) items.clear();
    if (items.empty()) continue;
    categories.push_back(makeCategory(target.name, target.icon, target.section, std::move(items),
                                      !target.isWhitelisted, target.isWhitelisted));
  }

  // The browsers' own processes play no part here: profile caches are rebuilt on demand.
  for (const auto& browser : chromiumBrowsers()) {
    report("Scanning " + browser.name + " Profiles...");
    auto found = applicationData.scanChromiumProfiles(paths.inHome(browser.basePath));
    if (!found.safe.empty()) {
      categories.push_back(makeCategory(browser.name + " Profile Caches", "globe", "Browsers", std::move(found.safe),
                                        true, false));
    }
    if (!found.swCache.empty()) {
      categories.push_back(makeCategory(browser.name + " SW Cache", "globe", "Browsers", std::move(found.swCache),
                                        false, true));
    }
  }

  if (running.contains("simulator")) {
    CleanCategory skipped = makeCategory("Simulator Temp Files", "ipad.and.iphone", "Developer", {}, false, false);
    skipped.skipReason = "Simulator is running";
    categories.push_back(std::move(skipped));
  } else {
    report("Scanning Simulator temp files...");
    appendIfAny(applicationData.scanSimulatorTempFiles(), "Simulator Temp Files", "ipad.and.iphone", "Developer", true,
                false);
  }

  report("Scanning Group Containers...");
  appendIfAny(applicationData.scanGroupContainers(), "Group Container Caches", "folder.badge.gearshape", "User", true,
              false);
  report("Scanning Sandboxed Containers...");
  appendIfAny(applicationData.scanSandboxedContainers(), "Sandboxed App Caches", "folder.badge.gearshape", "User", true,
              false);
  report("Scanning Application Support...");
  appendIfAny(applicationData.scanApplicationSupportLogs(), "App Support Logs & Caches", "folder.badge.gearshape",
              "User", true, false);
  report("Detecting orphaned app data...");
  appendIfAny(applicationData.scanOrphanedAppData(collectInstalledBundleIDs(paths)), "Orphaned App Data",
              "trash.square", "User", true, false);
  appendIfAny(ProjectArtifactScanner(context).scanProjectArtifacts(onProgress), "Project Build Artifacts",
              "hammer.circle", "Developer", false, true);
  report("Checking Time Machine backups...");
  if (platform_.processes) {
    appendIfAny(BackupScanner(context, *platform_.processes).scanTimeMachineIncomplete(), "Incomplete TM Backups",
                "externaldrive.badge.timemachine", "Backups", false, true);
  }
  // One filter after every row and scanner, so no finder can offer what must be kept.
  KeepList(keptPaths(), paths, running).apply(categories);
  report("Scan complete");
  return categories;
}

} // namespace halcyra::clean
