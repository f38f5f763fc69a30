#include "ScriptedCleanService.h"

#include "core/CleanError.h"

namespace halcyra::app {

void ScriptedCleanService::setCategories(std::vector<clean::CleanCategory> categories) {
  std::lock_guard lock(mutex_);
  categories_ = std::move(categories);
}

void ScriptedCleanService::setResult(clean::CleanResult result) {
  std::lock_guard lock(mutex_);
  result_ = result;
}

void ScriptedCleanService::failNextScan() {
  std::lock_guard lock(mutex_);
  fail_ = true;
}

void ScriptedCleanService::holdNext() {
  std::lock_guard lock(mutex_);
  hold_ = true;
}

void ScriptedCleanService::release() {
  {
    std::lock_guard lock(mutex_);
    hold_ = false;
  }
  released_.notify_all();
}

void ScriptedCleanService::waitIfHeld(const clean::StatusCallback& onProgress, const char* status) {
  onProgress(status);
  std::unique_lock lock(mutex_);
  released_.wait(lock, [this] { return !hold_; });
}

std::vector<clean::CleanCategory> ScriptedCleanService::scan(const clean::StatusCallback& onProgress) {
  waitIfHeld(onProgress, "Scanning Xcode Derived Data...");
  std::lock_guard lock(mutex_);
  if (fail_) {
    fail_ = false;
    throw core::CleanError(core::CleanError::Kind::scanFailed, "scripted failure");
  }
  return categories_;
}

clean::CleanResult ScriptedCleanService::clean(const std::vector<clean::CleanItem>&,
                                               const clean::StatusCallback& onProgress) {
  waitIfHeld(onProgress, "Removing ~/Library/Caches/com.spotify.client...");
  std::lock_guard lock(mutex_);
  return result_;
}

} // namespace halcyra::app
