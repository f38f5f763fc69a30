#pragma once

#include <exception>
#include <mutex>
#include <string>
#include <vector>

#include "support/Gate.h"
#include "duplicates/viewmodel/DuplicateServiceProtocol.h"

namespace halcyra::testing {

/// A duplicate engine for view-model tests: returns or throws what it was given, reports the
/// given status texts first, remembers what it was asked, and can hold a call until released
/// so a test sees the working phase.
class FakeDuplicateService final : public duplicates::DuplicateServiceProtocol {
public:
  std::vector<duplicates::DuplicateGroup> groups;
  duplicates::DuplicateCleanResult result;
  std::vector<std::string> statuses;
  std::exception_ptr failure;

  struct ScanCall {
    std::string directory;
    std::int64_t minFileSize = 0;
  };

  std::vector<ScanCall> scans() {
    std::lock_guard lock(mutex_);
    return scans_;
  }
  std::vector<std::string> deletedPaths() {
    std::lock_guard lock(mutex_);
    return deleted_;
  }
  void hold() { gate_.hold(); }
  void release() { gate_.release(); }

  std::vector<duplicates::DuplicateGroup> scan(const std::string& directory, std::int64_t minFileSize,
                                               const duplicates::StatusCallback& onProgress) override {
    {
      std::lock_guard lock(mutex_);
      scans_.push_back({directory, minFileSize});
    }
    report(onProgress);
    if (failure) std::rethrow_exception(failure);
    return groups;
  }

  duplicates::DuplicateCleanResult deleteFiles(const std::vector<duplicates::DuplicateGroup>& marked,
                                               const duplicates::StatusCallback& onProgress) override {
    {
      std::lock_guard lock(mutex_);
      deleted_.clear();
      for (const auto& group : marked) {
        for (const auto& file : group.files) {
          if (file.isSelected) deleted_.push_back(file.path);
        }
      }
    }
    report(onProgress);
    if (failure) std::rethrow_exception(failure);
    return result;
  }

private:
  void report(const duplicates::StatusCallback& onProgress) {
    for (const auto& status : statuses) onProgress(status);
    gate_.pass();
  }

  std::mutex mutex_;
  Gate gate_;
  std::vector<ScanCall> scans_;
  std::vector<std::string> deleted_;
};

} // namespace halcyra::testing
