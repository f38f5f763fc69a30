#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "clean/CleanItem.h"
#include "clean/ScanContext.h"
#include "platform/ProcessRunner.h"

namespace halcyra::clean {

/// Interrupted Time Machine backups (".inProgress" folders) on the attached disks, found with
/// the answers of "/usr/bin/tmutil", "/bin/df" and "/usr/bin/hdiutil". Each tool runs at most
/// 5 seconds; a tool that is missing, hangs or answers something unexpected means nothing is
/// found. Paths that the tools print are paths of the scanned system and are looked up below
/// its root. Items start unselected.
class BackupScanner {
public:
  BackupScanner(ScanContext& context, platform::ProcessRunner& runner) : context_(context), runner_(runner) {}

  /// Nothing while no destination is configured or a backup is running; otherwise the
  /// interrupted backups of every local volume but the system's, sorted by size.
  std::vector<CleanItem> scanTimeMachineIncomplete();

  /// The mount points of network file systems, from the output of "df -T".
  std::set<std::string> detectNetworkMountPoints();
  /// Where the disk image bundle `bundleName` is mounted, from the output of "hdiutil info".
  std::optional<std::string> findMountedBundlePath(const std::string& bundleName);
  /// Adds the ".inProgress" folders less than 4 levels below `root` that are older than
  /// `cutoff`, in walk order, to `into`.
  static void findInProgressBackups(const std::string& root, TimePoint cutoff, std::vector<std::string>& into);

  /// The mount points of the network file systems in a "df -T" listing.
  static std::set<std::string> parseNetworkMountPoints(const std::string& dfOutput);
  /// The mount paths an "hdiutil info" listing gives for the image `bundleName`, in listing
  /// order. Only plain paths below "/Volumes/" (no "." or ".." component) are given: the
  /// listing is read from a tool and must not steer the walk anywhere else.
  static std::vector<std::string> parseMountedBundlePaths(const std::string& hdiutilInfo, const std::string& bundleName);
  /// Whether "tmutil destinationinfo" says no backup destination is set up.
  static bool reportsNoDestination(const std::string& destinationInfo);
  /// Whether "tmutil status" says a backup is running now.
  static bool reportsRunningBackup(const std::string& status);

private:
  std::optional<std::string> output(const std::string& tool, const std::vector<std::string>& arguments);

  ScanContext& context_;
  platform::ProcessRunner& runner_;
};

} // namespace halcyra::clean
