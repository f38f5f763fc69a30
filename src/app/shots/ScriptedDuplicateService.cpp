#include "ScriptedDuplicateService.h"

#include "core/CleanError.h"

namespace halcyra::app {

void ScriptedDuplicateService::setGroups(std::vector<duplicates::DuplicateGroup> groups) {
  std::lock_guard lock(mutex_);
  groups_ = std::move(groups);
}

void ScriptedDuplicateService::setResult(duplicates::DuplicateCleanResult result) {
  std::lock_guard lock(mutex_);
  result_ = result;
}

void ScriptedDuplicateService::failNextScan() {
  std::lock_guard lock(mutex_);
  fail_ = true;
}

void ScriptedDuplicateService::holdNext() {
  std::lock_guard lock(mutex_);
  hold_ = true;
}

void ScriptedDuplicateService::release() {
  {
    std::lock_guard lock(mutex_);
    hold_ = false;
  }
  released_.notify_all();
}

void ScriptedDuplicateService::waitIfHeld(const duplicates::StatusCallback& onProgress, const char* status) {
  onProgress(status);
  std::unique_lock lock(mutex_);
  released_.wait(lock, [this] { return !hold_; });
}

std::vector<duplicates::DuplicateGroup> ScriptedDuplicateService::scan(const std::string&, std::int64_t,
                                                                       const duplicates::StatusCallback& onProgress) {
  waitIfHeld(onProgress, "Hashing file 350/1184…");
  std::lock_guard lock(mutex_);
  if (fail_) {
    fail_ = false;
    throw core::CleanError(core::CleanError::Kind::scanFailed, "scripted failure");
  }
  return groups_;
}

duplicates::DuplicateCleanResult ScriptedDuplicateService::deleteFiles(const std::vector<duplicates::DuplicateGroup>&,
                                                                       const duplicates::StatusCallback& onProgress) {
  waitIfHeld(onProgress, "Deleting file 11/12…");
  std::lock_guard lock(mutex_);
  return result_;
}

} // namespace halcyra::app
