#pragma once

#include <condition_variable>
#include <mutex>

#include "analyzer/viewmodel/DiskAnalyzerServiceProtocol.h"

namespace halcyra::app {

/// A size-tree walk that plays a script, for pictures of every phase: it returns the set result
/// (or fails), and can be held mid-walk until `release`, so the scanning screen stays up while
/// it is drawn.
class ScriptedDiskAnalyzerService final : public analyzer::DiskAnalyzerServiceProtocol {
public:
  void setResult(analyzer::DiskAnalyzerScanResult result);
  /// The next walk throws.
  void failNextScan();
  /// The next walk reports one status and then waits for `release`.
  void holdNext();
  void release();

  analyzer::DiskAnalyzerScanResult scanDirectory(const std::string& path,
                                                 const std::function<void(const std::string&)>& onProgress) override;

private:
  std::mutex mutex_;
  std::condition_variable released_;
  bool hold_ = false;
  bool fail_ = false;
  analyzer::DiskAnalyzerScanResult result_;
};

} // namespace halcyra::app
