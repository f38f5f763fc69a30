#pragma once

#include <functional>
#include <string>

#include "analyzer/DiskAnalyzerScanResult.h"
#include "analyzer/DiskAnalyzerService.h"

namespace halcyra::analyzer {

/// What the analyzer's flow asks of the size-tree walk. The window drives the real walk through
/// NativeDiskAnalyzerService; pictures and tests put a scripted one in its place.
class DiskAnalyzerServiceProtocol {
public:
  virtual ~DiskAnalyzerServiceProtocol() = default;
  /// Walks `path`; status texts may come from any thread. Never fails as a whole.
  virtual DiskAnalyzerScanResult scanDirectory(const std::string& path,
                                               const std::function<void(const std::string&)>& onProgress) = 0;
};

/// The real walk of the file system.
class NativeDiskAnalyzerService final : public DiskAnalyzerServiceProtocol {
public:
  DiskAnalyzerScanResult scanDirectory(const std::string& path,
                                       const std::function<void(const std::string&)>& onProgress) override {
    return service_.scanDirectory(path, onProgress);
  }

private:
  DiskAnalyzerService service_;
};

} // namespace halcyra::analyzer
