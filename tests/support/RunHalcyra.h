#pragma once

#include <chrono>
#include <cstdlib>
#include <string>
#include <vector>

#include "platform/ProcessRunner.h"

namespace halcyra::testing {

/// Runs the built `halcyra` (found through HALCYRA_TEST_BIN) with `arguments`; standard input
/// is empty and neither output is a terminal.
inline platform::ProcessOutput runHalcyra(const std::vector<std::string>& arguments) {
  const char* bin = std::getenv("HALCYRA_TEST_BIN");
  const std::string executable = std::string(bin != nullptr ? bin : "bin") + "/halcyra";
  platform::SystemProcessRunner runner;
  return runner.run(executable, arguments, std::chrono::seconds(60));
}

} // namespace halcyra::testing
