#pragma once

#include <cstdint>
#include <string>

namespace halcyra::shredder {

/// One candidate for shredding, as resolved from what the user picked.
struct ShredderFile {
  std::string id;          ///< fresh upper-case UUID, identifies the row
  std::string path;        ///< absolute path of the file
  std::string name;        ///< last path component
  std::int64_t size = 0;   ///< bytes, when resolved
  bool isSelected = true;  ///< the user can clear it

  bool operator==(const ShredderFile&) const = default;
};

} // namespace halcyra::shredder
