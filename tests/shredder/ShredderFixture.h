#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "shredder/ShredderService.h"
#include "support/FakePrivilegedRunner.h"
#include "support/TempDir.h"
#include "RecordingFileLayer.h"

namespace halcyra::shredder::testing {

using halcyra::testing::FakePrivilegedRunner;
using halcyra::testing::TempDir;

/// A service over a temporary folder, its file calls watched and its prompt answered by a
/// double; progress reports are collected.
class ShredderFixture : public ::testing::Test {
protected:
  using Report = std::pair<std::string, double>;

  void useRunner(std::shared_ptr<FakePrivilegedRunner> runner) { runner_ = std::move(runner); }

  ShredderService service() {
    platform::Platform platform;
    platform.paths = platform::SystemPaths(tmp_ / "home", tmp_.path());
    platform.privileged = runner_;
    return ShredderService(platform, layer_);
  }

  ShredResult shred(const std::vector<std::string>& paths, int passes) {
    auto engine = service();
    const auto files = engine.resolveFiles(paths);
    return engine.shredFiles(
        files, passes, [this](const std::string& text, double fraction) { reports_.emplace_back(text, fraction); },
        &refused_);
  }

  TempDir tmp_;
  std::shared_ptr<RecordingFileLayer> layer_ = std::make_shared<RecordingFileLayer>();
  std::shared_ptr<FakePrivilegedRunner> runner_ =
      std::make_shared<FakePrivilegedRunner>(FakePrivilegedRunner::Answer::refuse);
  std::vector<Report> reports_;
  std::vector<ShredderRefusal> refused_;
};

inline bool allZero(const std::string& bytes) {
  return bytes.find_first_not_of('\0') == std::string::npos;
}

/// How many aligned 16-byte blocks two equally long texts have in common.
inline std::size_t equalBlocks(const std::string& a, const std::string& b) {
  std::size_t same = 0;
  for (std::size_t i = 0; i + 16 <= a.size() && i + 16 <= b.size(); i += 16) {
    if (a.compare(i, 16, b, i, 16) == 0) ++same;
  }
  return same;
}

} // namespace halcyra::shredder::testing
