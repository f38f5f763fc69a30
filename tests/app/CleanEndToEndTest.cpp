#include <gtest/gtest.h>

#include <QSettings>

#include "ViewModelTesting.h"
#include "clean/NativeCleanService.h"
#include "clean/viewmodel/CleanViewModel.h"
#include "platform/Platform.h"
#include "support/TempDir.h"

using halcyra::clean::CleanViewModel;

namespace {

void waitFor(const CleanViewModel& viewModel, CleanViewModel::Phase phase) {
  halcyra::testing::settle([&] { return viewModel.phase() == phase; }, 60000);
  ASSERT_EQ(static_cast<int>(viewModel.phase()), static_cast<int>(phase)) << viewModel.errorText().toStdString();
}

} // namespace

// The view model over the real engine on a made-up machine: a scan finds a cache, the user
// keeps one item of it selected, and the clean removes exactly that.
TEST(CleanEndToEnd, ScanReviewAndCleanOneItemOfAFakeHome) {
  halcyra::testing::TempDir machine;
  const std::string home = machine.mkdir("home/sam");
  const std::string root = machine.mkdir("root");
  const std::string keep = machine.file("home/sam/Library/Caches/com.example.keep/blob", 4000);
  const std::string drop = machine.file("home/sam/Library/Caches/com.example.drop/blob", 3000);

  auto service = std::make_shared<halcyra::clean::NativeCleanService>(
      halcyra::platform::Platform::forSystem(halcyra::platform::SystemPaths(home, root)));
  halcyra::app::DebugLogger logger;
  halcyra::app::AppState state(std::make_unique<QSettings>(QString::fromStdString(machine / "defaults.ini"), QSettings::IniFormat));
  CleanViewModel viewModel(halcyra::platform::FullDiskAccessChecker(halcyra::platform::SystemPaths(home, root)), false);

  viewModel.scan(service, logger);
  waitFor(viewModel, CleanViewModel::Phase::preview);

  // Keep only the item under com.example.drop selected.
  viewModel.deselectAll();
  std::string categoryId, itemId;
  for (const auto& category : viewModel.categories()) {
    for (const auto& item : category.items) {
      if (item.path.find("com.example.drop") != std::string::npos) {
        categoryId = category.id;
        itemId = item.id;
      }
    }
  }
  ASSERT_FALSE(itemId.empty()) << "the scan did not list the cache";
  viewModel.toggleItem(QString::fromStdString(categoryId), QString::fromStdString(itemId));
  ASSERT_EQ(viewModel.selectedItemCount(), 1);

  viewModel.requestConfirmation();
  viewModel.confirmClean(service, state, logger);
  waitFor(viewModel, CleanViewModel::Phase::summary);

  EXPECT_FALSE(halcyra::testing::existsNoFollow(drop));
  EXPECT_TRUE(halcyra::testing::existsNoFollow(keep));
  ASSERT_TRUE(viewModel.result().has_value());
  EXPECT_EQ(viewModel.result()->itemsCleaned, 1);
  EXPECT_EQ(viewModel.result()->freedBytes, 3000);
  EXPECT_TRUE(state.lastCleanDate().isValid());
}
