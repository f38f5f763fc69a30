// `systemctl list-unit-files` and unit files: a unit name is one word ending in ".service",
// fit to stand in a folder as a file name only when it has no "/", and a program is absolute.
#include "FuzzInput.h"
#include "startup/StartupTextParsers.h"

using namespace halcyra;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string input = fuzz::text(data, size);
  for (const auto& row : startup::parseUnitFileList(input)) {
    fuzz::require(row.unit.ends_with(".service") && row.unit.size() > 8, "a unit is a named service");
    fuzz::require(row.unit.find_first_of(" \t\r\n") == std::string::npos, "a unit name is one word");
    fuzz::require(!row.state.empty() && row.state.find_first_of(" \t\r\n") == std::string::npos,
                  "a state is one word");
  }
  const auto summary = startup::parseUnitFile(input);
  if (summary.program) fuzz::require(summary.program->starts_with('/'), "a program is an absolute path");
  return 0;
}
