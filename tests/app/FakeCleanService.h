#pragma once

#include <exception>
#include <mutex>
#include <string>
#include <vector>

#include "support/Gate.h"
#include "clean/CleanServiceProtocol.h"

namespace halcyra::testing {

/// A cleaner engine for view-model tests: returns or throws what it was given, reports the
/// given status texts first, remembers what it was asked to remove, and can hold a call until
/// released so a test sees the working phase.
class FakeCleanService final : public clean::CleanServiceProtocol {
public:
  std::vector<clean::CleanCategory> categories;
  clean::CleanResult result;
  std::vector<std::string> statuses;
  std::exception_ptr failure;

  std::vector<clean::CleanItem> cleanedItems() {
    std::lock_guard lock(mutex_);
    return cleaned_;
  }
  void hold() { gate_.hold(); }
  void release() { gate_.release(); }

  std::vector<clean::CleanCategory> scan(const clean::StatusCallback& onProgress) override {
    report(onProgress);
    if (failure) std::rethrow_exception(failure);
    return categories;
  }

  clean::CleanResult clean(const std::vector<clean::CleanItem>& items, const clean::StatusCallback& onProgress) override {
    {
      std::lock_guard lock(mutex_);
      cleaned_ = items;
    }
    report(onProgress);
    if (failure) std::rethrow_exception(failure);
    return result;
  }

private:
  void report(const clean::StatusCallback& onProgress) {
    for (const auto& status : statuses) onProgress(status);
    gate_.pass();
  }

  std::mutex mutex_;
  Gate gate_;
  std::vector<clean::CleanItem> cleaned_;
};

} // namespace halcyra::testing
