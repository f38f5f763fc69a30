#include "analyzer/TreemapLayout.h"

#include <algorithm>
#include <limits>

#include "core/ByteFormatter.h"

namespace halcyra::analyzer {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// The worst aspect ratio among `areas` laid side by side along `side`. Degenerate rows (no
// area, no side) are infinitely bad; items that get no length do not count.
double worstRatio(const std::vector<double>& areas, std::size_t first, std::size_t end, double side) {
  double sum = 0;
  for (std::size_t i = first; i < end; ++i) sum += areas[i];
  if (!(sum > 0) || !(side > 0)) return kInfinity;
  const double thickness = sum / side;
  if (!(thickness > 0)) return kInfinity;
  double worst = 0;
  for (std::size_t i = first; i < end; ++i) {
    const double length = areas[i] / thickness;
    if (!(length > 0)) continue;
    worst = std::max({worst, thickness / length, length / thickness});
  }
  return worst;
}

} // namespace

std::vector<TreemapRect> squarifiedLayout(const std::vector<double>& items, const TreemapRect& bounds) {
  std::vector<TreemapRect> result(items.size());
  if (items.empty()) return result;
  double total = 0;
  for (double item : items) total += item;
  const double area = bounds.width * bounds.height;
  if (!(total > 0) || !(area > 0)) return result;

  std::vector<double> areas(items.size());
  for (std::size_t i = 0; i < items.size(); ++i) areas[i] = area * (items[i] / total);

  TreemapRect remaining = bounds;
  std::size_t i = 0;
  while (i < items.size()) {
    // The row runs along the shorter side: a strip across the top when the rectangle is
    // taller than wide, otherwise (a square too) a strip down the left.
    const bool horizontal = remaining.height > remaining.width;
    const double side = horizontal ? remaining.width : remaining.height;
    const std::size_t first = i;
    double sum = areas[i];
    double worst = worstRatio(areas, first, i + 1, side);
    ++i;
    while (i < items.size()) {
      const double candidate = worstRatio(areas, first, i + 1, side);
      if (candidate > worst) break; // an equal ratio is no worse, and inf equals inf
      sum += areas[i];
      worst = candidate;
      ++i;
    }
    const double thickness = sum / side;
    double offset = 0;
    for (std::size_t k = first; k < i; ++k) {
      const double length = areas[k] / thickness;
      if (horizontal) {
        result[k] = {remaining.x + offset, remaining.y, length, thickness};
      } else {
        result[k] = {remaining.x, remaining.y + offset, thickness, length};
      }
      offset += length;
    }
    if (horizontal) {
      remaining.y += thickness;
      remaining.height -= thickness;
    } else {
      remaining.x += thickness;
      remaining.width -= thickness;
    }
  }
  return result;
}

const TreemapColor& treemapColor(std::size_t position) { return kTreemapPalette[position % kTreemapPalette.size()]; }

TreemapRect treemapCellBox(const TreemapRect& rect) {
  using namespace TreemapCellStyle;
  return {rect.x + kMargin, rect.y + kMargin, std::max(rect.width - 2 * kMargin, kMinimumSide),
          std::max(rect.height - 2 * kMargin, kMinimumSide)};
}

bool treemapCellShowsLabel(const TreemapRect& rect) {
  return rect.width > TreemapCellStyle::kLabelMinWidth && rect.height > TreemapCellStyle::kLabelMinHeight;
}

bool treemapCellShowsSizeLine(const TreemapRect& rect) {
  return treemapCellShowsLabel(rect) && rect.height > TreemapCellStyle::kSizeLineMinHeight;
}

double treemapCellNameFontSize(const TreemapRect& rect) { return std::min(rect.width / 10, 12.0); }

double treemapCellSizeFontSize(const TreemapRect& rect) { return std::min(rect.width / 12, 10.0); }

double treemapCellFillOpacity(bool hovered) {
  return hovered ? TreemapCellStyle::kHoveredOpacity : TreemapCellStyle::kRestingOpacity;
}

std::string treemapCellTooltip(const DirectoryNode& node) {
  return node.name + " — " + core::ByteFormatter::format(node.size);
}

std::vector<TreemapCell> treemapCells(const std::vector<DirectoryNode>& children, double width, double height) {
  std::vector<TreemapCell> cells;
  // Without area the layout would divide by a thickness of zero.
  if (!(width > 0) || !(height > 0)) return cells;
  std::vector<double> sizes;
  sizes.reserve(children.size());
  for (const DirectoryNode& child : children) sizes.push_back(static_cast<double>(child.size));
  const std::vector<TreemapRect> rects = squarifiedLayout(sizes, {0, 0, width, height});
  cells.reserve(children.size());
  for (std::size_t i = 0; i < children.size(); ++i) {
    TreemapCell cell;
    cell.index = i;
    cell.rect = rects[i];
    cell.box = treemapCellBox(rects[i]);
    cell.color = treemapColor(i);
    cell.showsLabel = treemapCellShowsLabel(rects[i]);
    cell.showsSizeLine = treemapCellShowsSizeLine(rects[i]);
    cell.nameFontSize = treemapCellNameFontSize(rects[i]);
    cell.sizeFontSize = treemapCellSizeFontSize(rects[i]);
    cell.name = children[i].name;
    cell.sizeText = core::ByteFormatter::format(children[i].size);
    cell.tooltip = treemapCellTooltip(children[i]);
    cells.push_back(std::move(cell));
  }
  return cells;
}

} // namespace halcyra::analyzer
