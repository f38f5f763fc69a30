#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace halcyra::platform {

/// The string stored under `key` in the top-level dictionary of a property list, XML or
/// binary, given as its bytes. None when the bytes are no property list, the top level is no
/// dictionary, or the value is missing or not a string.
///
/// libplist does the parsing. It is loaded the first time a property list is read, so that
/// the commands that never read one do not pay for loading it (and the maths library it
/// brings). Throws std::runtime_error when it cannot be loaded: a property list that cannot be
/// read must never pass for one without the key.
std::optional<std::string> propertyListString(std::string_view bytes, const char* key);

/// The list stored under `key` in the top-level dictionary, by the same rules; none as well
/// when any element of the list is not a string.
std::optional<std::vector<std::string>> propertyListStringArray(std::string_view bytes, const char* key);

} // namespace halcyra::platform
