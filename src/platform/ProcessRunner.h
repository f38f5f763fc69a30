#pragma once

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace halcyra::platform {

/// What a finished (or stopped) child process left behind.
struct ProcessOutput {
  bool launched = false;   ///< false: the tool is missing or could not be started
  bool timedOut = false;   ///< true: it was killed, with its children, at the time limit
  int exitStatus = -1;     ///< exit code; -1 when it did not exit normally
  std::string standardOutput;
  std::string standardError;
};

/// Runs external tools. Standard output and standard error are drained while the child runs,
/// so a tool that writes megabytes never stalls on a full pipe.
class ProcessRunner {
public:
  virtual ~ProcessRunner() = default;

  /// Runs `executable` (an absolute, fixed path) with `arguments`; standard input is empty.
  /// Without a time limit it waits for the exit however long that takes.
  virtual ProcessOutput run(const std::string& executable, const std::vector<std::string>& arguments,
                            std::optional<std::chrono::milliseconds> timeLimit) = 0;

  /// The text of standard output, or none when the tool is missing, failed to launch, ran
  /// into the time limit, or wrote something that is not valid UTF-8. The exit status does
  /// not matter here.
  std::optional<std::string> outputText(const std::string& executable, const std::vector<std::string>& arguments,
                                        std::chrono::milliseconds timeLimit);
};

/// The real runner. `toolOverrides` maps a fixed tool path to the program that stands in for
/// it; tests put fake tools in place this way. Nothing else changes which program runs.
class SystemProcessRunner final : public ProcessRunner {
public:
  explicit SystemProcessRunner(std::map<std::string, std::string> toolOverrides = {});

  ProcessOutput run(const std::string& executable, const std::vector<std::string>& arguments,
                    std::optional<std::chrono::milliseconds> timeLimit) override;

private:
  std::map<std::string, std::string> toolOverrides_;
};

} // namespace halcyra::platform
