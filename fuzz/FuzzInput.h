#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <utility>

namespace halcyra::fuzz {

inline std::string text(const std::uint8_t* data, std::size_t size) {
  return std::string(reinterpret_cast<const char*>(data), size);
}

/// Splits the input at its first NUL byte: a short parameter before it, the text after it
/// (everything is text when there is no NUL).
inline std::pair<std::string, std::string> parameterAndText(const std::string& input) {
  const auto nul = input.find('\0');
  if (nul == std::string::npos) return {std::string(), input};
  return {input.substr(0, nul), input.substr(nul + 1)};
}

/// Ends the run as a finding: libFuzzer keeps the input that got here.
[[noreturn]] inline void violated(const char* what) {
  std::fprintf(stderr, "property violated: %s\n", what);
  std::abort();
}

inline void require(bool holds, const char* what) {
  if (!holds) violated(what);
}

} // namespace halcyra::fuzz
