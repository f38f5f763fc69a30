#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "platform/PrivilegedRunner.h"
#include "platform/ProcessRunner.h"

namespace halcyra::testing {

/// Stands in for the administrator prompt, which tests never raise. It notes every line and
/// every helper call it is given; then it either refuses, or calls `grant` (which gives the
/// fixture back the rights an administrator would have) and runs the line with /bin/sh -c, or
/// the real privileged helper built beside the tests, as the current user.
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

  platform::PrivilegedOutput runHelper(const std::vector<std::string>& arguments) override {
    helperCalls_.push_back(arguments);
    if (answer_ == Answer::refuse) return {};
    if (grant_) grant_();
    if (beforeHelper) beforeHelper();
    platform::SystemProcessRunner processes;
    platform::ProcessOutput output = processes.run(platform::privilegedHelperPath(), arguments, std::chrono::seconds(60));
    platform::PrivilegedOutput result;
    result.granted = output.launched && !output.timedOut && output.exitStatus == 0;
    result.output = std::move(output.standardOutput);
    return result;
  }

  /// Every line asked for, in order: one per prompt.
  const std::vector<std::string>& lines() const { return lines_; }
  /// The arguments of every helper run, in order: one per prompt.
  const std::vector<std::vector<std::string>>& helperCalls() const { return helperCalls_; }
  /// How many prompts were raised, lines and helper runs together.
  std::size_t prompts() const { return lines_.size() + helperCalls_.size(); }

  /// Runs while the "prompt" is open, after it was granted: a test swaps things here.
  std::function<void()> beforeHelper;

private:
  Answer answer_;
  std::function<void()> grant_;
  std::vector<std::string> lines_;
  std::vector<std::vector<std::string>> helperCalls_;
};

} // namespace halcyra::testing
