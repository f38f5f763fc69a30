// `sfltool dumpbtm`: a job with a named disabled parent is one with a disabled parent, names
// are never empty or "(null)", and every label is text of one line of the dump.
#include "FuzzInput.h"
#include "startup/StartupTextParsers.h"

using namespace halcyra;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string input = fuzz::text(data, size);
  const startup::BackgroundTaskDump dump = startup::parseBackgroundTaskDump(input);
  for (const auto& label : dump.namedParentDisabled) {
    fuzz::require(dump.parentDisabled.contains(label), "a named disabled parent is a disabled parent");
  }
  for (const auto& label : dump.parentDisabled) {
    fuzz::require(label.find('\n') == std::string::npos && input.find(label) != std::string::npos,
                  "a label is text of one line");
  }
  for (const auto& [label, name] : dump.names) {
    fuzz::require(!name.empty() && name != "(null)", "no empty or (null) names");
    fuzz::require(label.find('\n') == std::string::npos && name.find('\n') == std::string::npos,
                  "labels and names are text of one line");
  }
  return 0;
}
