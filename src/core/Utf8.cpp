#include "core/Utf8.h"

namespace halcyra::core {

std::size_t utf8SequenceLength(std::string_view bytes) {
  if (bytes.empty()) return 0;
  const auto b0 = static_cast<unsigned char>(bytes[0]);
  if (b0 < 0x80) return 1;
  std::size_t length = 0;
  unsigned char lo = 0x80, hi = 0xBF; // allowed range of the second byte
  if (b0 >= 0xC2 && b0 <= 0xDF) {
    length = 2;
  } else if (b0 >= 0xE0 && b0 <= 0xEF) {
    length = 3;
    if (b0 == 0xE0) lo = 0xA0;      // overlong
    else if (b0 == 0xED) hi = 0x9F; // surrogates
  } else if (b0 >= 0xF0 && b0 <= 0xF4) {
    length = 4;
    if (b0 == 0xF0) lo = 0x90;      // overlong
    else if (b0 == 0xF4) hi = 0x8F; // above U+10FFFF
  } else {
    return 0;
  }
  if (bytes.size() < length) return 0;
  const auto b1 = static_cast<unsigned char>(bytes[1]);
  if (b1 < lo || b1 > hi) return 0;
  for (std::size_t i = 2; i < length; ++i) {
    const auto b = static_cast<unsigned char>(bytes[i]);
    if (b < 0x80 || b > 0xBF) return 0;
  }
  return length;
}

bool isValidUtf8(std::string_view bytes) {
  while (!bytes.empty()) {
    const std::size_t n = utf8SequenceLength(bytes);
    if (n == 0) return false;
    bytes.remove_prefix(n);
  }
  return true;
}

} // namespace halcyra::core
