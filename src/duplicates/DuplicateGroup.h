#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "duplicates/DuplicateFile.h"

namespace halcyra::duplicates {

/// Files of one size and one whole-content SHA-256 digest, oldest first.
struct DuplicateGroup {
  std::string id;                      ///< fresh upper-case UUID text
  std::string fileHash;                ///< first 12 lower-case hex digits of the digest, for display
  std::string representativeFileName;  ///< last path component of the first file
  std::int64_t fileSize = 0;           ///< bytes of one copy; 0 when it could not be read
  std::vector<DuplicateFile> files;    ///< by modification date, oldest first

  /// How many files are marked for deletion.
  int selectedCount() const;
  /// `selectedCount` times `fileSize`: what deleting the current selection frees.
  std::int64_t totalWastedSize() const;
};

} // namespace halcyra::duplicates
