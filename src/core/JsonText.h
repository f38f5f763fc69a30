#pragma once

#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

namespace halcyra::core {

/// Writes a JSON document whose strings may hold file names that are not valid UTF-8.
///
/// Well-formed UTF-8 passes through unchanged; each byte that is not part of a well-formed
/// sequence is written as the escape "\udcXX" (a lone low surrogate carrying the byte, as in
/// Python's "surrogateescape"). A valid UTF-8 name can never produce such an escape, so the
/// written text names exactly one path, and a reader that maps U+DC80..U+DCFF back to bytes
/// recovers it. Numbers, booleans and null are written as nlohmann-json writes them.
std::string toJsonText(const nlohmann::json& value, int indent = 2);

/// The JSON string literal (with quotes) for raw bytes, by the rule above.
std::string jsonStringLiteral(std::string_view bytes);

} // namespace halcyra::core
