#pragma once

#include <cstdint>
#include <string>

#include "platform/SafeRemove.h"

namespace halcyra::shredder {

/// One candidate for shredding, as resolved from what the user picked.
struct ShredderFile {
  std::string id;          ///< fresh upper-case UUID, identifies the row
  std::string path;        ///< absolute path of the file
  std::string name;        ///< last path component
  std::int64_t size = 0;   ///< bytes, when resolved
  bool isSelected = true;  ///< the user can clear it
  /// The file and its folder as listed. Shredding acts on the path only while both are the
  /// same files; a record made by hand without them is looked at afresh when shredded.
  platform::ItemIdentity identity = {};

  bool operator==(const ShredderFile&) const = default;
};

} // namespace halcyra::shredder
