#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "analyzer/DirectoryNode.h"

namespace halcyra::analyzer {

/// A rectangle in view coordinates, origin at the top left.
struct TreemapRect {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;

  bool operator==(const TreemapRect&) const = default;
};

/// The squarified treemap of Bruls, Huizing and van Wijk over `items` (sizes, in the order to
/// lay out, which is never changed) in `bounds`. Returns one rectangle per item, in item order;
/// areas are shares of the sum of the items. Rows go along the shorter side of what is left
/// (a vertical strip on the left when width and height are equal); an item joins the row while
/// the row's worst aspect ratio does not get worse, equal and infinite ratios included.
/// Items that sum to nothing, or bounds without area, give zero rectangles.
std::vector<TreemapRect> squarifiedLayout(const std::vector<double>& items, const TreemapRect& bounds);

/// One colour of the treemap palette: its name and its tone.
struct TreemapColor {
  std::string_view name;
  std::uint8_t red = 0;
  std::uint8_t green = 0;
  std::uint8_t blue = 0;
};

/// The ten colours, in the order cells take them.
inline constexpr std::array<TreemapColor, 10> kTreemapPalette{{
    {"blue", 0, 122, 255},
    {"green", 52, 199, 89},
    {"orange", 255, 149, 0},
    {"purple", 175, 82, 222},
    {"pink", 255, 45, 85},
    {"cyan", 50, 173, 230},
    {"mint", 0, 199, 190},
    {"indigo", 88, 86, 214},
    {"teal", 48, 176, 199},
    {"brown", 162, 132, 94},
}};

/// The colour belongs to the position in the list, not to the folder: the palette repeats
/// every ten cells.
const TreemapColor& treemapColor(std::size_t position);

/// How a cell is drawn.
namespace TreemapCellStyle {
inline constexpr double kMargin = 1;           ///< inside the cell's rectangle, each side
inline constexpr double kMinimumSide = 1;      ///< smallest drawn width and height
inline constexpr double kCornerRadius = 4;
inline constexpr double kRestingOpacity = 0.5; ///< fill
inline constexpr double kHoveredOpacity = 0.7; ///< fill under the pointer
inline constexpr double kBorderOpacity = 0.8;
inline constexpr double kBorderWidth = 1;
inline constexpr double kLabelMinWidth = 60;     ///< a label needs a width above this
inline constexpr double kLabelMinHeight = 30;    ///< and a height above this
inline constexpr double kSizeLineMinHeight = 45; ///< the size line needs a height above this
inline constexpr double kLabelPadding = 4;
inline constexpr double kLabelSpacing = 2;       ///< between the two label lines
inline constexpr double kSizeLineOpacity = 0.8;
} // namespace TreemapCellStyle

/// The drawn box: the rectangle less the margin, never smaller than the minimum side.
TreemapRect treemapCellBox(const TreemapRect& rect);
/// Whether the name shows: width above 60 and height above 30.
bool treemapCellShowsLabel(const TreemapRect& rect);
/// Whether the size line shows under the name: the label shows and the height is above 45.
bool treemapCellShowsSizeLine(const TreemapRect& rect);
/// Point size of the name: width ÷ 10, at most 12.
double treemapCellNameFontSize(const TreemapRect& rect);
/// Point size of the size line: width ÷ 12, at most 10.
double treemapCellSizeFontSize(const TreemapRect& rect);
/// Fill opacity for the hover state.
double treemapCellFillOpacity(bool hovered);
/// The tooltip every cell has, whatever its size: name + " — " + the size as text.
std::string treemapCellTooltip(const DirectoryNode& node);

/// Everything a view needs to draw one cell.
struct TreemapCell {
  std::size_t index = 0; ///< of the child this cell shows
  TreemapRect rect;      ///< place in the view
  TreemapRect box;       ///< drawn box
  TreemapColor color;
  bool showsLabel = false;
  bool showsSizeLine = false;
  double nameFontSize = 0;
  double sizeFontSize = 0;
  std::string name;
  std::string sizeText;
  std::string tooltip;
};

/// The cells for `children` (in display order) in a view of `width` × `height`: one per child,
/// in order, however thin. A view without area draws nothing.
std::vector<TreemapCell> treemapCells(const std::vector<DirectoryNode>& children, double width, double height);

} // namespace halcyra::analyzer
