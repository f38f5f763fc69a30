#pragma once

#include <exception>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "core/Uuid.h"
#include "support/Gate.h"
#include "shredder/viewmodel/ShredderServiceProtocol.h"

namespace halcyra::testing {

/// A shredder engine for view-model tests. A path resolves to the files set for it with
/// `place` (a folder to several), each time with fresh ids as the real engine gives them;
/// other paths resolve to nothing. A run reports the given progress, then returns the given
/// result or throws the given failure. Either call can be held until released, so a test sees
/// the phase in between; the fake remembers what it was asked and on which thread.
class FakeShredderService final : public shredder::ShredderServiceProtocol {
public:
  std::vector<std::pair<std::string, double>> progress;
  shredder::ShredResult result;
  std::vector<shredder::ShredderRefusal> lateRefusals;
  std::exception_ptr failure;

  /// `path` resolves to these files, with the given sizes, in this order.
  void place(const std::string& path, std::vector<std::pair<std::string, std::int64_t>> files) {
    std::lock_guard lock(mutex_);
    places_[path] = std::move(files);
  }
  void hold() { gate_.hold(); }
  void release() { gate_.release(); }
  /// Whether a call is held right now.
  bool waiting() { return gate_.waiting(); }

  std::vector<shredder::ShredderFile> shredded() {
    std::lock_guard lock(mutex_);
    return shredded_;
  }
  int shredPasses() {
    std::lock_guard lock(mutex_);
    return passes_;
  }
  int runs() {
    std::lock_guard lock(mutex_);
    return runs_;
  }
  std::vector<std::thread::id> threads() {
    std::lock_guard lock(mutex_);
    return threads_;
  }
  int resolvesDone() {
    std::lock_guard lock(mutex_);
    return resolvesDone_;
  }

  std::vector<shredder::ShredderFile> resolveFiles(const std::vector<std::string>& paths,
                                                   std::vector<shredder::ShredderRefusal>& refused) override {
    wait();
    std::lock_guard lock(mutex_);
    std::vector<shredder::ShredderFile> out;
    for (const auto& path : paths) {
      const auto found = places_.find(path);
      if (found == places_.end()) {
        refused.push_back({path, "does not exist"});
        continue;
      }
      for (const auto& [file, size] : found->second) {
        out.push_back({core::makeUuid(), file, file.substr(file.rfind('/') + 1), size, true});
      }
    }
    resolvesDone_ += 1;
    return out;
  }

  shredder::ShredResult shredFiles(const std::vector<shredder::ShredderFile>& files, int passes,
                                   const ProgressCallback& onProgress,
                                   std::vector<shredder::ShredderRefusal>& refused) override {
    {
      std::lock_guard lock(mutex_);
      shredded_ = files;
      passes_ = passes;
      runs_ += 1;
    }
    for (const auto& [text, fraction] : progress) onProgress(text, fraction);
    wait();
    if (failure) std::rethrow_exception(failure);
    refused = lateRefusals;
    return result;
  }

private:
  void wait() {
    {
      std::lock_guard lock(mutex_);
      threads_.push_back(std::this_thread::get_id());
    }
    gate_.pass();
  }

  std::mutex mutex_;
  Gate gate_;
  std::map<std::string, std::vector<std::pair<std::string, std::int64_t>>> places_;
  std::vector<shredder::ShredderFile> shredded_;
  int passes_ = 0;
  int runs_ = 0;
  int resolvesDone_ = 0;
  std::vector<std::thread::id> threads_;
};

} // namespace halcyra::testing
