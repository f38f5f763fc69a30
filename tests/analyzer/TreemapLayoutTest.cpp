#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>
#include <set>

#include "analyzer/TreemapLayout.h"

using namespace halcyra::analyzer;

namespace {

void expectRect(const TreemapRect& actual, double x, double y, double width, double height) {
  EXPECT_NEAR(actual.x, x, 1e-9);
  EXPECT_NEAR(actual.y, y, 1e-9);
  EXPECT_NEAR(actual.width, width, 1e-9);
  EXPECT_NEAR(actual.height, height, 1e-9);
}

DirectoryNode node(const std::string& name, std::int64_t size) {
  DirectoryNode result;
  result.name = name;
  result.size = size;
  return result;
}

double overlap(const TreemapRect& a, const TreemapRect& b) {
  const double width = std::min(a.x + a.width, b.x + b.width) - std::max(a.x, b.x);
  const double height = std::min(a.y + a.height, b.y + b.height) - std::max(a.y, b.y);
  return width > 0 && height > 0 ? width * height : 0;
}

} // namespace

TEST(SquarifiedLayout, WorkedExampleInSixByFour) {
  const auto rects = squarifiedLayout({6, 6, 4, 3, 2, 2, 1}, {0, 0, 6, 4});
  ASSERT_EQ(rects.size(), 7u);
  // 6 and 6: a vertical strip 3 wide on the left (the rectangle is wider than tall).
  expectRect(rects[0], 0, 0, 3, 2);
  expectRect(rects[1], 0, 2, 3, 2);
  // What is left is 3 by 4, taller than wide: 4 and 3 go across the top, 7/3 high.
  expectRect(rects[2], 3, 0, 12.0 / 7, 7.0 / 3);
  expectRect(rects[3], 3 + 12.0 / 7, 0, 9.0 / 7, 7.0 / 3);
  // Then 2, 2 and 1 each in a strip of its own, 5/3 high.
  expectRect(rects[4], 3, 7.0 / 3, 1.2, 5.0 / 3);
  expectRect(rects[5], 4.2, 7.0 / 3, 1.2, 5.0 / 3);
  expectRect(rects[6], 5.4, 7.0 / 3, 0.6, 5.0 / 3);
}

TEST(SquarifiedLayout, SmallCasesAndTheRowRules) {
  EXPECT_TRUE(squarifiedLayout({}, {0, 0, 10, 10}).empty());
  expectRect(squarifiedLayout({42}, {5, 7, 30, 20})[0], 5, 7, 30, 20);

  // A square: the row is a vertical strip, and the second equal item leaves the worst ratio
  // as it was, which counts as no worse: both share the strip, one above the other.
  const auto square = squarifiedLayout({1, 1}, {0, 0, 10, 10});
  expectRect(square[0], 0, 0, 10, 5);
  expectRect(square[1], 0, 5, 10, 5);

  // Taller than wide: the row runs across the top, the full width.
  const auto tall = squarifiedLayout({1, 1}, {0, 0, 10, 40});
  expectRect(tall[0], 0, 0, 10, 20);
  expectRect(tall[1], 0, 20, 10, 20);

  // A row of nothing is infinitely bad, and two infinite ratios are equal: the zero items and
  // the first real one share one strip instead of dividing by a thickness of zero.
  const auto zeros = squarifiedLayout({0, 0, 1}, {0, 0, 4, 4});
  expectRect(zeros[0], 0, 0, 4, 0);
  expectRect(zeros[1], 0, 0, 4, 0);
  expectRect(zeros[2], 0, 0, 4, 4);

  // Nothing to share out, or nowhere to put it: zero rectangles, one per item.
  for (const auto& rects : {squarifiedLayout({0, 0, 0}, {0, 0, 10, 10}), squarifiedLayout({3, 1}, {0, 0, 0, 10})}) {
    for (const auto& rect : rects) EXPECT_EQ(rect, TreemapRect{});
  }
}

TEST(SquarifiedLayout, TilesTheAreaInProportionAndKeepsTheOrder) {
  std::mt19937 random(11);
  const std::vector<TreemapRect> bounds{{0, 0, 800, 600}, {10, 20, 90, 700}, {0, 0, 37.5, 12.25}, {0, 0, 50, 50}};
  for (int round = 0; round < 40; ++round) {
    std::vector<double> items(1 + random() % 60);
    for (double& item : items) item = 1 + static_cast<double>(random() % 1000000);
    if (round % 2 == 0) std::sort(items.rbegin(), items.rend()); // the usual largest-first order
    const double total = std::accumulate(items.begin(), items.end(), 0.0);
    for (const auto& box : bounds) {
      SCOPED_TRACE("round " + std::to_string(round));
      const auto rects = squarifiedLayout(items, box);
      ASSERT_EQ(rects.size(), items.size());
      const double area = box.width * box.height;
      double covered = 0;
      for (std::size_t i = 0; i < rects.size(); ++i) {
        const auto& rect = rects[i];
        EXPECT_NEAR(rect.width * rect.height, area * items[i] / total, area * 1e-9) << i;
        EXPECT_GE(rect.x, box.x - 1e-9);
        EXPECT_GE(rect.y, box.y - 1e-9);
        EXPECT_LE(rect.x + rect.width, box.x + box.width + 1e-6);
        EXPECT_LE(rect.y + rect.height, box.y + box.height + 1e-6);
        covered += rect.width * rect.height;
        for (std::size_t j = 0; j < i; ++j) EXPECT_LE(overlap(rect, rects[j]), area * 1e-9) << i << " and " << j;
      }
      EXPECT_NEAR(covered, area, area * 1e-9);
    }
  }
}

TEST(TreemapCells, LabelAndSizeLineNeedRoomStrictlyAboveTheLimits) {
  EXPECT_FALSE(treemapCellShowsLabel({0, 0, 60, 100}));
  EXPECT_FALSE(treemapCellShowsLabel({0, 0, 100, 30}));
  EXPECT_TRUE(treemapCellShowsLabel({0, 0, 61, 31}));
  EXPECT_FALSE(treemapCellShowsSizeLine({0, 0, 61, 31}));
  EXPECT_FALSE(treemapCellShowsSizeLine({0, 0, 61, 45}));
  EXPECT_TRUE(treemapCellShowsSizeLine({0, 0, 61, 46}));
  EXPECT_FALSE(treemapCellShowsSizeLine({0, 0, 60, 400})); // no size line without the name

  EXPECT_DOUBLE_EQ(treemapCellNameFontSize({0, 0, 61, 46}), 6.1);
  EXPECT_DOUBLE_EQ(treemapCellNameFontSize({0, 0, 500, 46}), 12);
  EXPECT_DOUBLE_EQ(treemapCellSizeFontSize({0, 0, 96, 46}), 8);
  EXPECT_DOUBLE_EQ(treemapCellSizeFontSize({0, 0, 500, 46}), 10);
}

TEST(TreemapCells, BoxLosesTheMarginButNeverShrinksBelowOnePoint) {
  expectRect(treemapCellBox({10, 20, 30, 40}), 11, 21, 28, 38);
  expectRect(treemapCellBox({10, 20, 2.5, 0.2}), 11, 21, 1, 1);
}

TEST(TreemapCells, OneCellPerChildInOrderWithPaletteByPosition) {
  std::vector<DirectoryNode> children;
  for (int i = 0; i < 11; ++i) children.push_back(node("folder" + std::to_string(i), 1000 - i));
  const auto cells = treemapCells(children, 400, 300);
  ASSERT_EQ(cells.size(), 11u);
  std::set<std::string_view> colours;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    EXPECT_EQ(cells[i].index, i);
    EXPECT_EQ(cells[i].name, children[i].name);
    colours.insert(cells[i].color.name);
  }
  EXPECT_EQ(colours.size(), 10u); // ten colours, then the first again
  EXPECT_EQ(cells[10].color.name, cells[0].color.name);
}

TEST(TreemapCells, TooltipNamesTheFolderAndItsSize) {
  EXPECT_EQ(treemapCellTooltip(node("Documents", 1500000)), "Documents — 1.5 MB");
  const auto cells = treemapCells({node("tiny", 0), node("big", 2000)}, 100, 100);
  ASSERT_EQ(cells.size(), 2u);
  EXPECT_EQ(cells[0].tooltip, "tiny — 0 KB"); // even a cell too small to see has one
  EXPECT_FALSE(cells[0].showsLabel);
  EXPECT_EQ(cells[1].sizeText, "2 KB");
}

TEST(TreemapCells, NothingToShareOrNoRoomToDrawIn) {
  const auto zero = treemapCells({node("a", 0), node("b", 0)}, 200, 100);
  ASSERT_EQ(zero.size(), 2u);
  for (const auto& cell : zero) expectRect(cell.box, 1, 1, 1, 1);
  EXPECT_TRUE(treemapCells({node("a", 10)}, 0, 100).empty());
  EXPECT_TRUE(treemapCells({node("a", 10)}, 100, 0).empty());
  EXPECT_TRUE(treemapCells({}, 100, 100).empty());
}
