#include <gtest/gtest.h>

#include "clean/PreviewLayout.h"

using namespace halcyra::clean;

namespace {

SectionGroup section(const std::string& name, std::int64_t size) {
  CleanCategory category;
  category.section = name;
  category.items.push_back(CleanItem{"i", "/x", size, true});
  return {name, {category}};
}

} // namespace

TEST(PreviewLayout, CardHeightFollowsTheSquareRootOfTheShareWithAFloor) {
  EXPECT_DOUBLE_EQ(cardHeight(1000, 1000), 260.0);
  EXPECT_DOUBLE_EQ(cardHeight(250, 1000), 200.0);
  // A hundredth of the largest is raised to the 0.05 floor.
  EXPECT_NEAR(cardHeight(10, 1000), 166.83, 0.01);
  // Nothing to divide by counts as one byte.
  EXPECT_NEAR(cardHeight(0, 0), 166.83, 0.01);
  EXPECT_DOUBLE_EQ(cardHeight(1, 1), 260.0);
  // Against the sections, only reclaimable bytes set the scale.
  EXPECT_DOUBLE_EQ(cardHeight(400, {section("User", 1600), section("System", 400)}), 200.0);
}

TEST(PreviewLayout, ColumnsPlaceLargestFirstAndTiesGoLeft) {
  // One section stands alone in the left column.
  auto single = columns({section("User", 5)});
  EXPECT_EQ(single.left, (std::vector<std::size_t>{0}));
  EXPECT_TRUE(single.right.empty());

  // Equal sizes keep their order: the first goes left, the second right.
  auto tied = columns({section("System", 100), section("User", 100)});
  EXPECT_EQ(tied.left, (std::vector<std::size_t>{0}));
  EXPECT_EQ(tied.right, (std::vector<std::size_t>{1}));

  // Largest first, each into the lower column by card height (1000 -> 260, 250 -> 200, 60 -> 169):
  // left 260; right 200; right again (260 > 200) to 400; then left (260 <= 400).
  auto mixed = columns({section("System", 250), section("User", 60), section("Browsers", 1000), section("Developer", 250)});
  EXPECT_EQ(mixed.left, (std::vector<std::size_t>{2, 1}));
  EXPECT_EQ(mixed.right, (std::vector<std::size_t>{0, 3}));
}

TEST(PreviewLayout, FileIconsByLowerCasedExtension) {
  EXPECT_EQ(fileIcon("/Applications/Old.APP"), "app.gift");
  EXPECT_EQ(fileIcon("/Applications/Old.app/"), "app.gift");
  EXPECT_EQ(fileIcon("/p/a.Sqlite"), "cylinder");
  EXPECT_EQ(fileIcon("/p/a.tar.gz"), "doc.zipper");
  EXPECT_EQ(fileIcon("/p/Cache"), "folder.fill");
  EXPECT_EQ(fileIcon("/p/.json"), "folder.fill"); // a hidden name, not an extension
  EXPECT_EQ(fileIcon("/p.json/Cache"), "folder.fill");
}
