#pragma once

#include <condition_variable>
#include <mutex>
#include <vector>

#include "duplicates/viewmodel/DuplicateServiceProtocol.h"

namespace halcyra::app {

/// A duplicate engine that plays a script, for pictures of every phase: a scan returns the
/// set groups (or fails), a delete run returns the set result, and either can be held mid-run
/// until `release`, so the working screens stay up while they are drawn.
class ScriptedDuplicateService final : public duplicates::DuplicateServiceProtocol {
public:
  void setGroups(std::vector<duplicates::DuplicateGroup> groups);
  void setResult(duplicates::DuplicateCleanResult result);
  /// The next scan throws a scan failure.
  void failNextScan();
  /// The next scan or delete run reports one status and then waits for `release`.
  void holdNext();
  void release();

  std::vector<duplicates::DuplicateGroup> scan(const std::string& directory, std::int64_t minFileSize,
                                               const duplicates::StatusCallback& onProgress) override;
  duplicates::DuplicateCleanResult deleteFiles(const std::vector<duplicates::DuplicateGroup>& groups,
                                               const duplicates::StatusCallback& onProgress) override;

private:
  void waitIfHeld(const duplicates::StatusCallback& onProgress, const char* status);

  std::mutex mutex_;
  std::condition_variable released_;
  bool hold_ = false;
  bool fail_ = false;
  std::vector<duplicates::DuplicateGroup> groups_;
  duplicates::DuplicateCleanResult result_;
};

} // namespace halcyra::app
