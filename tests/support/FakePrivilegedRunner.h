#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "platform/PrivilegedRunner.h"
#include "platform/ProcessRunner.h"

namespace halcyra::testing {

/// Stands in for the administrator prompt, which tests never raise. It notes every line it is
/// given; then it either refuses, or calls `grant` (which gives the fixture back the rights an
/// administrator would have) and runs the line with /bin/sh -c as the current user, granting
/// when the shell succeeds.
class FakePrivilegedRunner final : public platform::PrivilegedRunner {
public:
  enum class Answer { grant, refuse };

  explicit FakePrivilegedRunner(Answer answer, std::function<void()> grant = {})
      : answer_(answer), grant_(std::move(grant)) {}

  bool runShellLine(const std::string& line) override {
    lines_.push_back(line);
    if (answer_ == Answer::refuse) return false;
    if (grant_) grant_();
    platform::SystemProcessRunner processes;
    // The limit only keeps a broken line from hanging the tests.
    const platform::ProcessOutput output = processes.run("/bin/sh", {"-c", line}, std::chrono::seconds(60));
    return output.launched && !output.timedOut && output.exitStatus == 0;
  }

  /// Every line asked for, in order: one per prompt.
  const std::vector<std::string>& lines() const { return lines_; }

private:
  Answer answer_;
  std::function<void()> grant_;
  std::vector<std::string> lines_;
};

} // namespace halcyra::testing
