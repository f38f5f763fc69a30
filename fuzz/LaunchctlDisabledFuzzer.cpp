// `launchctl print-disabled`: every label is the text between two quotes of one line of the
// output, so it holds neither a quote nor a line feed.
#include "FuzzInput.h"
#include "startup/StartupTextParsers.h"

using namespace halcyra;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string input = fuzz::text(data, size);
  for (const auto& [label, enabled] : startup::parseDisabledServices(input)) {
    (void)enabled;
    fuzz::require(label.find('"') == std::string::npos && label.find('\n') == std::string::npos,
                  "a label is what stands between two quotes of one line");
    fuzz::require(input.find('"' + label + '"') != std::string::npos, "a label stands quoted in the output");
  }
  return 0;
}
