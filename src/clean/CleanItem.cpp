#include "clean/CleanItem.h"

namespace halcyra::clean {

std::int64_t CleanCategory::selectedSize() const {
  std::int64_t total = 0;
  for (const auto& item : items) {
    if (item.isSelected) total += item.size;
  }
  return total;
}

std::size_t CleanCategory::selectedCount() const {
  std::size_t count = 0;
  for (const auto& item : items) {
    if (item.isSelected) ++count;
  }
  return count;
}

} // namespace halcyra::clean
