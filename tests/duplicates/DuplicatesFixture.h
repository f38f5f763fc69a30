#pragma once

#include <memory>
#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "duplicates/DuplicateFileService.h"
#include "platform/PrivilegedRunner.h"
#include "platform/ProcessRunner.h"
#include "support/TempDir.h"

namespace halcyra::testing {

/// Stands in for the administrator prompt: notes each line, one per prompt, and either
/// refuses or runs it with /bin/sh as the test's own user (who, as root, has the rights an
/// administrator would).
class RecordingPrivilegedRunner final : public platform::PrivilegedRunner {
public:
  enum class Answer { grant, refuse };

  explicit RecordingPrivilegedRunner(Answer answer) : answer_(answer) {}

  bool runShellLine(const std::string& line) override {
    lines_.push_back(line);
    if (answer_ == Answer::refuse) return false;
    platform::SystemProcessRunner processes;
    const auto output = processes.run("/bin/sh", {"-c", line}, std::chrono::seconds(60));
    return output.launched && !output.timedOut && output.exitStatus == 0;
  }

  const std::vector<std::string>& lines() const { return lines_; }

private:
  Answer answer_;
  std::vector<std::string> lines_;
};

/// A temporary folder, a service whose administrator prompt is a fake, and the status texts
/// the last call posted.
class DuplicatesFixture : public ::testing::Test {
protected:
  explicit DuplicatesFixture(RecordingPrivilegedRunner::Answer answer = RecordingPrivilegedRunner::Answer::grant)
      : runner(std::make_shared<RecordingPrivilegedRunner>(answer)) {}

  duplicates::DuplicateFileService service() const {
    platform::Platform platform;
    platform.privileged = runner;
    return duplicates::DuplicateFileService(platform);
  }

  std::vector<duplicates::DuplicateGroup> scan(std::int64_t minFileSize = 4096, const std::string& folder = {}) {
    texts.clear();
    return service().scan(folder.empty() ? dir.path() : folder, minFileSize,
                          [this](const std::string& text) { texts.push_back(text); });
  }

  duplicates::DuplicateCleanResult remove(const std::vector<std::string>& paths) {
    texts.clear();
    return service().deleteFiles(paths, [this](const std::string& text) { texts.push_back(text); });
  }

  /// The groups as sets of paths, for comparisons that do not depend on order.
  static std::set<std::set<std::string>> pathSets(const std::vector<duplicates::DuplicateGroup>& groups) {
    std::set<std::set<std::string>> sets;
    for (const auto& group : groups) {
      std::set<std::string> paths;
      for (const auto& file : group.files) paths.insert(file.path);
      sets.insert(paths);
    }
    return sets;
  }

  TempDir dir;
  std::shared_ptr<RecordingPrivilegedRunner> runner;
  std::vector<std::string> texts;
};

} // namespace halcyra::testing
