// A name as readable output shows it holds no control byte and no malformed UTF-8, and reads
// back as exactly the name: escaping can neither hide a byte nor make two names look alike.
#include <optional>

#include "FuzzInput.h"
#include "cli/Terminal.h"
#include "core/Utf8.h"

using namespace halcyra;

namespace {

std::optional<std::string> unescaped(const std::string& text) {
  std::string name;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\\') {
      name.push_back(text[i]);
      continue;
    }
    if (++i >= text.size()) return std::nullopt;
    const char c = text[i];
    switch (c) {
    case '\\': name.push_back('\\'); break;
    case 'n': name.push_back('\n'); break;
    case 't': name.push_back('\t'); break;
    case 'r': name.push_back('\r'); break;
    case 'a': name.push_back('\a'); break;
    case 'b': name.push_back('\b'); break;
    case 'f': name.push_back('\f'); break;
    case 'v': name.push_back('\v'); break;
    default: {
      if (i + 2 >= text.size()) return std::nullopt;
      int value = 0;
      for (std::size_t k = 0; k < 3; ++k) {
        const char digit = text[i + k];
        if (digit < '0' || digit > '7') return std::nullopt;
        value = value * 8 + (digit - '0');
      }
      if (value > 255) return std::nullopt;
      name.push_back(static_cast<char>(value));
      i += 2;
    }
    }
  }
  return name;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string name = fuzz::text(data, size);
  const std::string shown = cli::escapedName(name);
  for (const char c : shown) {
    const auto byte = static_cast<unsigned char>(c);
    fuzz::require(byte >= 0x20 && byte != 0x7F, "no control byte is shown");
  }
  fuzz::require(core::isValidUtf8(shown), "what is shown is well-formed UTF-8");
  const auto back = unescaped(shown);
  fuzz::require(back.has_value() && *back == name, "what is shown reads back as the name");
  return 0;
}
