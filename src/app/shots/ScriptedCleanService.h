#pragma once

#include <condition_variable>
#include <mutex>
#include <vector>

#include "clean/CleanServiceProtocol.h"

namespace halcyra::app {

/// A cleaner engine that plays a script, for pictures of every phase: a scan returns the set
/// categories (or fails), a clean returns the set result, and either can be held mid-run until
/// `release`, so the working screens stay up while they are drawn.
class ScriptedCleanService final : public clean::CleanServiceProtocol {
public:
  void setCategories(std::vector<clean::CleanCategory> categories);
  void setResult(clean::CleanResult result);
  /// The next scan throws a scan failure.
  void failNextScan();
  /// The next scan or clean reports one status and then waits for `release`.
  void holdNext();
  void release();

  std::vector<clean::CleanCategory> scan(const clean::StatusCallback& onProgress) override;
  clean::CleanResult clean(const std::vector<clean::CleanItem>& items, const clean::StatusCallback& onProgress) override;

private:
  void waitIfHeld(const clean::StatusCallback& onProgress, const char* status);

  std::mutex mutex_;
  std::condition_variable released_;
  bool hold_ = false;
  bool fail_ = false;
  std::vector<clean::CleanCategory> categories_;
  clean::CleanResult result_;
};

} // namespace halcyra::app
