#pragma once

#include <string_view>

namespace halcyra::core {

/// True when the bytes are well-formed UTF-8 (no overlong forms, no surrogates, nothing above U+10FFFF).
bool isValidUtf8(std::string_view bytes);

/// Length of the well-formed UTF-8 sequence starting at `bytes[0]`, or 0 when the first byte
/// does not start one.
std::size_t utf8SequenceLength(std::string_view bytes);

} // namespace halcyra::core
