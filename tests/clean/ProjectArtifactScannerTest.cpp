#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ScanFixture.h"
#include "clean/ProjectArtifactScanner.h"

using namespace halcyra;
using namespace halcyra::testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

namespace {

struct ArtifactFixture : ScannerContextFixture {
  std::vector<std::string> statuses;

  // An artifact folder with one file, old enough to be taken unless `ageDays` says otherwise.
  void artifact(const std::string& relative, std::int64_t size = 100, std::int64_t ageDays = 30) const {
    dir.file("home/" + relative + "/content", size);
    TempDir::setAge(home + "/" + relative, ageDays * kDay);
  }
  std::vector<std::string> scan() {
    auto items = clean::ProjectArtifactScanner(context).scanProjectArtifacts(
        [this](const std::string& text) { statuses.push_back(text); });
    for (const auto& item : items) EXPECT_FALSE(item.isSelected);
    return itemPaths(items, home);
  }
};

} // namespace

TEST(ProjectArtifacts, TakesOldBuildOutputWithoutEnteringIt) {
  ArtifactFixture f;
  f.artifact("Projects/web/node_modules/dep/node_modules", 50);
  f.artifact("Projects/web/node_modules", 500);
  f.artifact("dev/rust/target", 300);
  f.artifact("dev/py/.venv", 200);
  f.artifact("dev/py/.cache/build"); // a hidden folder is not entered
  f.artifact("dev/recent/dist", 100, 6);
  f.artifact("dev/older/dist", 100, 8);
  f.artifact("dev/repo/.git/build");
  f.artifact("dev/Library/build");
  f.artifact("Documents/Projects/app/Pods", 10);
  f.artifact("Elsewhere/app/node_modules");
  EXPECT_THAT(f.scan(), ElementsAre("Projects/web/node_modules", "dev/rust/target", "dev/py/.venv", "dev/older/dist",
                                    "Documents/Projects/app/Pods"));
  EXPECT_THAT(f.statuses, ElementsAre("Scanning projects in dev...", "Scanning projects in Projects...",
                                      "Scanning projects in Projects..."));
}

TEST(ProjectArtifacts, SixLevelsDeepIsTheLimit) {
  ArtifactFixture f;
  f.artifact("Code/1/2/3/4/5/build", 20);   // depth 6
  f.artifact("Code/a/2/3/4/5/6/build", 30); // depth 7
  EXPECT_THAT(f.scan(), ElementsAre("Code/1/2/3/4/5/build"));
}

TEST(ProjectArtifacts, VendorAndBinNeedProofOfTheirProject) {
  ArtifactFixture f;
  f.dir.file("home/www/php/composer.json", "{}");
  f.artifact("www/php/vendor", 40);
  f.artifact("www/go/vendor/github.com/x/build", 30); // not taken, and not searched either
  f.dir.file("home/www/net/App.csproj", "<Project/>");
  f.artifact("www/net/bin/Debug", 20);
  TempDir::setAge(f.home + "/www/net/bin", 30 * kDay);
  f.artifact("www/scripts/bin", 10);
  f.dir.file("home/www/noproj/bin/Release/x", 5);
  f.artifact("www/noproj/bin", 10);
  EXPECT_THAT(f.scan(), ElementsAre("www/php/vendor", "www/net/bin"));

  EXPECT_TRUE(clean::ProjectArtifactScanner::isGuardedArtifactSafe("node_modules", f.home + "/nowhere"));
  EXPECT_FALSE(clean::ProjectArtifactScanner::isGuardedArtifactSafe("bin", f.home + "/nowhere"));
}

TEST(ProjectArtifacts, LinksAreNeitherArtifactsNorFollowed) {
  ArtifactFixture f;
  f.artifact("Outside/app/node_modules", 1000);
  f.dir.mkdir("home/Repos");
  f.dir.symlink("home/Repos/linked", f.home + "/Outside");
  f.dir.symlink("home/Repos/node_modules", f.home + "/Outside/app/node_modules");
  EXPECT_THAT(f.scan(), IsEmpty());
}
