// The login-item script's answer: every item has a name, and neither name nor path holds the
// tab or line feed that separate them, nor blank space at either end.
#include "FuzzInput.h"
#include "startup/StartupTextParsers.h"

using namespace halcyra;

namespace {

bool trimmed(const std::string& text) {
  const std::string_view white = " \t\r\n\v\f";
  return text.empty() || (white.find(text.front()) == std::string_view::npos &&
                          white.find(text.back()) == std::string_view::npos);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string input = fuzz::text(data, size);
  for (const auto& item : startup::parseLoginItemList(input)) {
    fuzz::require(!item.name.empty(), "an item has a name");
    for (const std::string* part : {&item.name, &item.path}) {
      fuzz::require(part->find('\t') == std::string::npos && part->find('\n') == std::string::npos,
                    "no separator inside a name or path");
      fuzz::require(trimmed(*part), "names and paths are trimmed");
      fuzz::require(input.find(*part) != std::string::npos, "every part is text of the answer");
    }
  }
  return 0;
}
