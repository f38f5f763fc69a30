// A clean asked to stop finishes the item in hand, leaves the rest, and its result counts
// exactly what went before the stop.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <memory>

#include "clean/NativeCleanService.h"
#include "support/TempDir.h"

using namespace halcyra;
using halcyra::testing::existsNoFollow;
using halcyra::testing::TempDir;

namespace {

// A Trash whose emptying is the moment the user presses Ctrl-C.
class StoppingTrash final : public platform::Trash {
public:
  explicit StoppingTrash(std::shared_ptr<std::atomic<bool>> stop) : stop_(std::move(stop)) {}
  std::optional<platform::TrashSummary> summary() override { return platform::TrashSummary{1, 500}; }
  bool empty() override {
    stop_->store(true);
    return true;
  }
  std::string itemPath() const override { return "/trash"; }

private:
  std::shared_ptr<std::atomic<bool>> stop_;
};

} // namespace

TEST(InterruptedClean, TheItemInHandFinishesTheRestStayAndTheResultCountsOnlyWhatWent) {
  TempDir dir;
  const auto stop = std::make_shared<std::atomic<bool>>(false);
  platform::Platform platform;
  platform.paths = platform::SystemPaths(dir.mkdir("home"), dir.mkdir("root"));
  platform.trash = std::make_shared<StoppingTrash>(stop);
  platform.stopFlag = stop;
  const std::string before = dir.file("home/Library/Caches/before/blob", 100);
  const std::string after = dir.file("home/Library/Caches/after/blob", 200);
  const std::vector<clean::CleanItem> items{{"1", dir / "home/Library/Caches/before", 100, true},
                                            {"2", "/trash", 500, true},
                                            {"3", dir / "home/Library/Caches/after", 200, true}};

  const auto result = clean::NativeCleanService(platform).clean(items, {});

  EXPECT_FALSE(existsNoFollow(before));
  EXPECT_TRUE(existsNoFollow(after));
  EXPECT_EQ(result.itemsCleaned, 2);
  EXPECT_EQ(result.freedBytes, 600);
}
