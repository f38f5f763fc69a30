#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "ViewModelTesting.h"
#include "shredder/viewmodel/NativeShredderService.h"
#include "shredder/viewmodel/ShredderViewModel.h"
#include "support/FakePrivilegedRunner.h"
#include "support/TempDir.h"

using halcyra::shredder::ShredderViewModel;
using halcyra::testing::existsNoFollow;

// The view model over the real engine in a temporary folder: a file picked on its own and
// then its folder are listed once each, one file is unticked, and the run destroys exactly
// the ticked ones while folders, the hidden file and the unticked file stay.
TEST(ShredderEndToEnd, PickedFolderIsShreddedExceptWhatTheUserKept) {
  halcyra::testing::TempDir machine;
  const std::string picked = machine.file("docs/a.txt", 3000);
  const std::string deep = machine.file("docs/sub/b.txt", 70000);
  const std::string kept = machine.file("docs/keep.txt", 500);
  const std::string hidden = machine.file("docs/.secret", 10);

  halcyra::platform::Platform platform;
  platform.paths = halcyra::platform::SystemPaths(machine / "home", machine.path());
  auto runner = std::make_shared<halcyra::testing::FakePrivilegedRunner>(
      halcyra::testing::FakePrivilegedRunner::Answer::refuse);
  platform.privileged = runner;
  auto service = std::make_shared<halcyra::shredder::NativeShredderService>(platform);
  halcyra::app::DebugLogger logger;
  ShredderViewModel viewModel;

  const auto settle = [](const std::function<bool()>& done) { return halcyra::testing::settle(done, 60000); };

  viewModel.addFiles({picked}, service);
  viewModel.addFiles({machine / "docs"}, service);
  ASSERT_TRUE(settle([&] { return !viewModel.isResolving(); }));
  ASSERT_EQ(viewModel.phase(), ShredderViewModel::Phase::preview);
  std::vector<std::string> listed;
  for (const auto& file : viewModel.files()) listed.push_back(file.path);
  std::sort(listed.begin() + 1, listed.end()); // the folder's own order is the walk's
  EXPECT_EQ(listed, (std::vector<std::string>{picked, kept, deep}));

  for (const auto& file : viewModel.files()) {
    if (file.path == kept) viewModel.toggleFile(QString::fromStdString(file.id));
  }
  viewModel.setPasses(1);
  viewModel.requestConfirmation();
  viewModel.confirmShred(service, logger);
  ASSERT_TRUE(settle([&] { return viewModel.phase() != ShredderViewModel::Phase::shredding; }));
  ASSERT_EQ(viewModel.phase(), ShredderViewModel::Phase::summary) << viewModel.errorText().toStdString();

  EXPECT_EQ(viewModel.filesShredded(), 2);
  EXPECT_EQ(viewModel.result()->totalBytes, 73000);
  EXPECT_EQ(viewModel.resultPasses(), 1);
  EXPECT_EQ(viewModel.progressMessage(), "Complete");
  EXPECT_FALSE(existsNoFollow(picked));
  EXPECT_FALSE(existsNoFollow(deep));
  EXPECT_TRUE(existsNoFollow(kept));
  EXPECT_TRUE(existsNoFollow(hidden));
  EXPECT_TRUE(existsNoFollow(machine / "docs/sub"));
  EXPECT_TRUE(runner->lines().empty());
  EXPECT_EQ(viewModel.fileCount(), 3); // the list stays until the user resets
}
