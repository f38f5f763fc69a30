#include "clean/PreviewLayout.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <numeric>
#include <string>

namespace halcyra::clean {

double cardHeight(std::int64_t size, std::int64_t largestSize) {
  const double divisor = largestSize <= 1 ? 1.0 : static_cast<double>(largestSize);
  const double ratio = std::max(static_cast<double>(size) / divisor, 0.05);
  return std::sqrt(ratio) * 120.0 + 140.0;
}

double cardHeight(std::int64_t size, const std::vector<SectionGroup>& sections) {
  std::int64_t largest = 0;
  for (const auto& section : sections) largest = std::max(largest, reclaimableSize(section.second));
  return cardHeight(size, largest);
}

ColumnPlacement columns(const std::vector<SectionGroup>& sections) {
  std::vector<std::int64_t> sizes;
  std::int64_t largest = 0;
  for (const auto& section : sections) {
    sizes.push_back(reclaimableSize(section.second));
    largest = std::max(largest, sizes.back());
  }
  std::vector<std::size_t> order(sections.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return sizes[a] > sizes[b]; });

  ColumnPlacement placement;
  double leftHeight = 0;
  double rightHeight = 0;
  for (const std::size_t index : order) {
    const double height = cardHeight(sizes[index], largest);
    if (leftHeight <= rightHeight) {
      placement.left.push_back(index);
      leftHeight += height;
    } else {
      placement.right.push_back(index);
      rightHeight += height;
    }
  }
  return placement;
}

std::string_view fileIcon(std::string_view path) {
  while (path.size() > 1 && path.back() == '/') path.remove_suffix(1);
  const auto slash = path.rfind('/');
  const std::string_view name = slash == std::string_view::npos ? path : path.substr(slash + 1);
  const auto dot = name.rfind('.');
  // A leading dot starts a hidden name, not an extension.
  if (dot == std::string_view::npos || dot == 0) return "folder.fill";
  std::string extension(name.substr(dot + 1));
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  if (extension == "app") return "app.gift";
  if (extension == "log") return "doc.text";
  if (extension == "plist") return "doc.badge.gearshape";
  if (extension == "json") return "curlybraces";
  if (extension == "db" || extension == "sqlite") return "cylinder";
  if (extension == "zip" || extension == "gz" || extension == "tar") return "doc.zipper";
  if (extension == "dmg") return "externaldrive";
  return "folder.fill";
}

std::int64_t totalSize(const CleanCategory& category) {
  std::int64_t total = 0;
  for (const auto& item : category.items) total += item.size;
  return total;
}

std::vector<CleanCategory> reviewableCategories(const std::vector<CleanCategory>& sectionCategories) {
  std::vector<CleanCategory> result;
  for (const auto& category : sectionCategories) {
    if (isReclaimable(category)) result.push_back(category);
  }
  std::stable_sort(result.begin(), result.end(),
                   [](const CleanCategory& a, const CleanCategory& b) { return totalSize(a) > totalSize(b); });
  return result;
}

std::vector<CleanCategory> skippedCategories(const std::vector<CleanCategory>& sectionCategories) {
  std::vector<CleanCategory> result;
  for (const auto& category : sectionCategories) {
    if (category.skipReason && !category.isWhitelisted) result.push_back(category);
  }
  return result;
}

} // namespace halcyra::clean
