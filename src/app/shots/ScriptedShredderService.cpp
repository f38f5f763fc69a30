#include "ScriptedShredderService.h"

#include "core/Uuid.h"
#include "shredder/ShredderError.h"

namespace halcyra::app {

void ScriptedShredderService::setFiles(std::vector<std::pair<std::string, std::int64_t>> files) {
  std::lock_guard lock(mutex_);
  files_ = std::move(files);
}

void ScriptedShredderService::setProgress(std::string text, double fraction) {
  std::lock_guard lock(mutex_);
  progressText_ = std::move(text);
  progressFraction_ = fraction;
}

void ScriptedShredderService::setResult(shredder::ShredResult result) {
  std::lock_guard lock(mutex_);
  result_ = result;
}

void ScriptedShredderService::failNextRun() {
  std::lock_guard lock(mutex_);
  fail_ = true;
}

void ScriptedShredderService::holdNext() {
  std::lock_guard lock(mutex_);
  hold_ = true;
}

void ScriptedShredderService::release() {
  {
    std::lock_guard lock(mutex_);
    hold_ = false;
  }
  released_.notify_all();
}

std::vector<std::string> ScriptedShredderService::lastPicked() {
  std::lock_guard lock(mutex_);
  return lastPicked_;
}

std::vector<shredder::ShredderFile> ScriptedShredderService::resolveFiles(const std::vector<std::string>& paths,
                                                                          std::vector<shredder::ShredderRefusal>&) {
  std::lock_guard lock(mutex_);
  lastPicked_ = paths;
  std::vector<shredder::ShredderFile> out;
  for (const auto& [path, size] : files_) {
    out.push_back({core::makeUuid(), path, path.substr(path.rfind('/') + 1), size, true});
  }
  return out;
}

shredder::ShredResult ScriptedShredderService::shredFiles(const std::vector<shredder::ShredderFile>& files, int,
                                                          const ProgressCallback& onProgress,
                                                          std::vector<shredder::ShredderRefusal>&) {
  std::unique_lock lock(mutex_);
  const std::string text = progressText_;
  const double fraction = progressFraction_;
  lock.unlock();
  onProgress(text, fraction);
  lock.lock();
  released_.wait(lock, [this] { return !hold_; });
  if (fail_) {
    fail_ = false;
    throw shredder::ShredderError(shredder::ShredderError::Kind::cannotReadFile,
                                  files.empty() ? std::string() : files.front().path);
  }
  return result_;
}

} // namespace halcyra::app
