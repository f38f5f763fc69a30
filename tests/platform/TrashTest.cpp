#include <gtest/gtest.h>

#include "platform/Trash.h"
#include "support/TempDir.h"

using namespace halcyra::platform;
using halcyra::testing::TempDir;

TEST(FreedesktopTrash, CountsTopLevelItemsAndWeighsEverythingBelowThem) {
  TempDir dir;
  FreedesktopTrash trash(dir / "Trash");
  EXPECT_EQ(trash.summary()->itemCount, 0); // no Trash folder yet
  dir.file("Trash/files/report.pdf", 1000);
  dir.file("Trash/files/old project/.git/config", 20); // hidden files weigh too
  dir.file("Trash/files/old project/main.c", 300);
  dir.file("Trash/info/report.pdf.trashinfo", 77);     // records are not items
  const auto summary = trash.summary();
  ASSERT_TRUE(summary.has_value());
  EXPECT_EQ(summary->itemCount, 2);
  EXPECT_EQ(summary->totalSize, 1320);
  EXPECT_EQ(trash.itemPath(), dir / "Trash");
}

TEST(FinderTrash, AcceptsOnlyTwoPlainNumbers) {
  EXPECT_EQ(FinderTrash::parseFinderAnswer("3,1024\n")->itemCount, 3);
  EXPECT_EQ(FinderTrash::parseFinderAnswer("  3,1024 ")->totalSize, 1024);
  EXPECT_EQ(FinderTrash::parseFinderAnswer("0,0")->itemCount, 0);
  EXPECT_FALSE(FinderTrash::parseFinderAnswer("3,1.5E+9").has_value());
  EXPECT_FALSE(FinderTrash::parseFinderAnswer("3").has_value());
  EXPECT_FALSE(FinderTrash::parseFinderAnswer("3,4,5").has_value());
  EXPECT_FALSE(FinderTrash::parseFinderAnswer("").has_value());
}
