#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>

#include "DuplicatesTestGroups.h"
#include "duplicates/viewmodel/DeletionPlan.h"

using halcyra::duplicates::planDeletion;
using halcyra::testing::copyOnDisk;
using halcyra::testing::groupOf;
using halcyra::testing::TempDir;

TEST(DeletionPlan, KeepsToMarkedCopiesThatAreStillWhatTheScanSaw) {
  TempDir dir;
  const auto keep = copyOnDisk(dir, "keep", 900, false);
  const auto same = copyOnDisk(dir, "same", 600, true);
  const auto grown = copyOnDisk(dir, "grown", 600, true);
  const auto swapped = copyOnDisk(dir, "swapped", 600, true);
  const auto gone = copyOnDisk(dir, "gone", 600, true);
  std::ofstream(grown.path, std::ios::app) << "more";
  TempDir::setAge(grown.path, 600); // same date, other size
  std::remove(swapped.path.c_str());
  dir.symlink("swapped", same.path); // a link where the file was is not that file
  std::remove(gone.path.c_str());

  const auto plan = planDeletion({groupOf("g", "keep", {keep, same, grown, swapped, gone})});
  EXPECT_EQ(plan.paths, (std::vector<std::string>{same.path}));
  ASSERT_EQ(plan.skipped.size(), 3u);
  EXPECT_EQ(plan.skipped[0].path, grown.path);
  EXPECT_EQ(plan.skipped[1].path, swapped.path);
  EXPECT_EQ(plan.skipped[2].path, gone.path);
}

TEST(DeletionPlan, AGroupWhoseKeptCopiesChangedLosesNothing) {
  TempDir dir;
  const auto keptA = copyOnDisk(dir, "a/keep", 900, false);
  const auto keptB = copyOnDisk(dir, "b/keep", 900, false);
  const auto spare = copyOnDisk(dir, "spare", 600, true);
  TempDir::setAge(keptA.path, 5);
  // One intact kept copy is enough.
  EXPECT_EQ(planDeletion({groupOf("g", "keep", {keptA, keptB, spare})}).paths, (std::vector<std::string>{spare.path}));

  TempDir::setAge(keptB.path, 5);
  const auto plan = planDeletion({groupOf("g", "keep", {keptA, keptB, spare})});
  EXPECT_TRUE(plan.paths.empty());
  ASSERT_EQ(plan.skipped.size(), 1u);
  EXPECT_EQ(plan.skipped[0].reason, "the copy kept of it changed since the scan");
}
