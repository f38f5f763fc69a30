#pragma once

#include <functional>
#include <string>
#include <vector>

#include "shredder/ShredResult.h"
#include "shredder/ShredderFile.h"
#include "shredder/ShredderRefusal.h"

namespace halcyra::shredder {

/// The shredder's engine as its view model drives it, so a test or a rendering can put a
/// scripted one in its place. Both calls run on a worker thread.
class ShredderServiceProtocol {
public:
  /// Text and overall fraction, from the worker thread; must return at once.
  using ProgressCallback = std::function<void(const std::string& text, double fraction)>;

  virtual ~ShredderServiceProtocol() = default;
  /// The files behind the given absolute paths, in order; never fails. Inputs that are refused
  /// are added to `refused` with the reason.
  virtual std::vector<ShredderFile> resolveFiles(const std::vector<std::string>& paths,
                                                 std::vector<ShredderRefusal>& refused) = 0;
  /// Destroys the given files with `passes` overwrite passes; no single file ends the run.
  virtual ShredResult shredFiles(const std::vector<ShredderFile>& files, int passes, const ProgressCallback& onProgress,
                                 std::vector<ShredderRefusal>& refused) = 0;
};

} // namespace halcyra::shredder
