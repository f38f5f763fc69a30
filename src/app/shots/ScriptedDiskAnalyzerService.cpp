#include "ScriptedDiskAnalyzerService.h"

#include <stdexcept>

namespace halcyra::app {

void ScriptedDiskAnalyzerService::setResult(analyzer::DiskAnalyzerScanResult result) {
  std::lock_guard lock(mutex_);
  result_ = std::move(result);
}

void ScriptedDiskAnalyzerService::failNextScan() {
  std::lock_guard lock(mutex_);
  fail_ = true;
}

void ScriptedDiskAnalyzerService::holdNext() {
  std::lock_guard lock(mutex_);
  hold_ = true;
}

void ScriptedDiskAnalyzerService::release() {
  {
    std::lock_guard lock(mutex_);
    hold_ = false;
  }
  released_.notify_all();
}

analyzer::DiskAnalyzerScanResult ScriptedDiskAnalyzerService::scanDirectory(
    const std::string&, const std::function<void(const std::string&)>& onProgress) {
  std::unique_lock lock(mutex_);
  if (hold_) {
    lock.unlock();
    onProgress("Scanning: Application Support (48210 files found)");
    lock.lock();
    released_.wait(lock, [this] { return !hold_; });
  }
  if (fail_) {
    fail_ = false;
    throw std::runtime_error("The folder could not be read.");
  }
  return result_;
}

} // namespace halcyra::app
