#include "duplicates/DuplicateGroup.h"

#include <algorithm>

namespace halcyra::duplicates {

int DuplicateGroup::selectedCount() const {
  return static_cast<int>(std::count_if(files.begin(), files.end(), [](const DuplicateFile& file) { return file.isSelected; }));
}

std::int64_t DuplicateGroup::totalWastedSize() const { return selectedCount() * fileSize; }

} // namespace halcyra::duplicates
