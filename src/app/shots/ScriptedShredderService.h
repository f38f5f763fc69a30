#pragma once

#include <condition_variable>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "shredder/viewmodel/ShredderServiceProtocol.h"

namespace halcyra::app {

/// A shredder engine that plays a script, for pictures of every phase: any picked path
/// resolves to the set files, a run reports the set progress and returns the set result (or
/// fails), and a run can be held after its report until `release`, so the progress screen
/// stays up while it is drawn. Nothing on disk is touched.
class ScriptedShredderService final : public shredder::ShredderServiceProtocol {
public:
  /// Paths and sizes every pick resolves to, in this order.
  void setFiles(std::vector<std::pair<std::string, std::int64_t>> files);
  void setProgress(std::string text, double fraction);
  void setResult(shredder::ShredResult result);
  /// The next run throws an error of the engine for its first file.
  void failNextRun();
  void holdNext();
  void release();
  /// The paths of the latest pick, as they reached the engine.
  std::vector<std::string> lastPicked();

  std::vector<shredder::ShredderFile> resolveFiles(const std::vector<std::string>& paths,
                                                   std::vector<shredder::ShredderRefusal>& refused) override;
  shredder::ShredResult shredFiles(const std::vector<shredder::ShredderFile>& files, int passes,
                                   const ProgressCallback& onProgress,
                                   std::vector<shredder::ShredderRefusal>& refused) override;

private:
  std::mutex mutex_;
  std::condition_variable released_;
  bool hold_ = false;
  bool fail_ = false;
  std::vector<std::pair<std::string, std::int64_t>> files_;
  std::vector<std::string> lastPicked_;
  std::string progressText_;
  double progressFraction_ = 0;
  shredder::ShredResult result_;
};

} // namespace halcyra::app
