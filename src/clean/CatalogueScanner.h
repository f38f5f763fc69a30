#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "clean/CleanItem.h"
#include "clean/ScanContext.h"
#include "clean/ScanTarget.h"

namespace halcyra::clean {

/// The path walk of the catalogue: each folder of a target gives its direct entries as items
/// (a folder is taken whole, never picked apart), each file path gives itself. The rows with
/// rules of their own ("User Caches", "User Logs", "Third-Party System Logs") leave out the
/// entries those rules name.
class CatalogueScanner {
public:
  /// `targets` are the resolved rows of one scan: the cache and log folders that rows name
  /// are claimed once, here, so that "User Caches" and "User Logs" leave them to those rows.
  CatalogueScanner(ScanContext& context, const std::vector<ScanTarget>& targets);

  /// The items of one target, in listing order (not sorted). With a `cutoff`, entries modified
  /// later than it stay out.
  std::vector<CleanItem> collect(const ScanTarget& target, std::optional<TimePoint> cutoff);

  const std::set<std::string>& claimedCaches() const { return claimedCaches_; }
  const std::set<std::string>& claimedLogs() const { return claimedLogs_; }

private:
  bool leavesOut(const ScanTarget& target, const std::string& name) const;

  ScanContext& context_;
  std::set<std::string> claimedCaches_;
  std::set<std::string> claimedLogs_;
};

} // namespace halcyra::clean
