#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include "ShredderFixture.h"
#include "support/PrivateMounts.h"

namespace halcyra::shredder::testing {
namespace {

using ResolveFilesTest = ShredderFixture;

std::vector<std::string> pathsOf(const std::vector<ShredderFile>& files) {
  std::vector<std::string> paths;
  for (const auto& file : files) paths.push_back(file.path);
  return paths;
}

TEST_F(ResolveFilesTest, FolderListsItsVisibleRegularFilesAtAnyDepthInOrder) {
  tmp_.file("pick/b.txt", "bb");
  tmp_.file("pick/a/deep/c.txt", "ccc");
  tmp_.file("pick/.hidden", "h");
  tmp_.file("pick/.git/config", "g");
  tmp_.file("pick/z.txt", "");
  tmp_.symlink("pick/link", tmp_ / "pick/b.txt");
  ASSERT_EQ(::mkfifo((tmp_ / "pick/pipe").c_str(), 0600), 0);
  const auto single = tmp_.file("solo.bin", 7);
  const auto hiddenGiven = tmp_.file(".dotfile", "d");

  std::vector<ShredderRefusal> refused;
  const auto files = service().resolveFiles({tmp_ / "pick/", single, hiddenGiven}, refused);

  EXPECT_EQ(pathsOf(files), (std::vector<std::string>{tmp_ / "pick/a/deep/c.txt", tmp_ / "pick/b.txt",
                                                      tmp_ / "pick/z.txt", single, hiddenGiven}));
  EXPECT_TRUE(refused.empty()); // what a folder holds besides files is simply not listed
  EXPECT_EQ(files[0].name, "c.txt");
  EXPECT_EQ(files[0].size, 3);
  EXPECT_EQ(files[3].size, 7);
  for (const auto& file : files) {
    EXPECT_TRUE(file.isSelected);
    EXPECT_EQ(file.id.size(), 36u);
    EXPECT_EQ(file.id.find_first_of("abcdef"), std::string::npos);
  }
  EXPECT_NE(files[0].id, files[1].id);
}

TEST_F(ResolveFilesTest, LinksSpecialFilesAndSharedDataAreRefusedWithTheirReason) {
  const auto target = tmp_.file("keep/doc", "precious");
  const auto folder = tmp_.mkdir("keep/folder");
  const auto fileLink = tmp_.symlink("in/file-link", target);
  const auto folderLink = tmp_.symlink("in/folder-link", folder);
  const auto fifo = tmp_ / "in/fifo";
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  const auto socketPath = tmp_ / "in/sock";
  const int sock = ::socket(AF_UNIX, SOCK_STREAM, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  ASSERT_LT(socketPath.size(), sizeof(address.sun_path));
  socketPath.copy(address.sun_path, socketPath.size());
  ASSERT_EQ(::bind(sock, reinterpret_cast<sockaddr*>(&address), sizeof(address)), 0);
  const auto shared = tmp_.file("in/shared", "both names");
  ASSERT_EQ(::link(shared.c_str(), (tmp_ / "keep/shared").c_str()), 0);
  tmp_.file("in/dir/inner", "inner");
  ASSERT_EQ(::link((tmp_ / "in/dir/inner").c_str(), (tmp_ / "keep/inner").c_str()), 0);

  std::vector<ShredderRefusal> refused;
  const auto files = service().resolveFiles(
      {fileLink, folderLink + "/", fifo, socketPath, shared, tmp_ / "in/dir", tmp_ / "in/missing"}, refused);
  ::close(sock);

  EXPECT_TRUE(files.empty());
  ASSERT_EQ(refused.size(), 7u);
  const std::vector<std::pair<std::string, std::string>> expected{
      {fileLink, "symbolic link"}, {folderLink + "/", "symbolic link"}, {fifo, "FIFO"},
      {socketPath, "socket"},      {shared, "1 other name"},           {tmp_ / "in/dir/inner", "hard links"},
      {tmp_ / "in/missing", "does not exist"}};
  for (std::size_t i = 0; i < expected.size(); ++i) {
    EXPECT_EQ(refused[i].path, expected[i].first);
    EXPECT_NE(refused[i].reason.find(expected[i].second), std::string::npos) << refused[i].reason;
  }
}

TEST_F(ResolveFilesTest, TheSystemRootIsRefusedWhole) {
  tmp_.file("etc/passwd", "root");
  std::vector<ShredderRefusal> refused;
  const auto files = service().resolveFiles({tmp_.path(), tmp_ / "etc/../"}, refused);
  EXPECT_TRUE(files.empty());
  ASSERT_EQ(refused.size(), 2u);
  EXPECT_EQ(refused[0].reason, "is the root of the file system");
}

TEST_F(ResolveFilesTest, RefusedInputsAreNeverWrittenWhenShredded) {
  const auto target = tmp_.file("keep/doc", "precious");
  const auto link = tmp_.symlink("in/link", target);
  const auto partner = tmp_.file("in/shared", "both names");
  ASSERT_EQ(::link(partner.c_str(), (tmp_ / "keep/shared").c_str()), 0);
  const auto fifo = tmp_ / "in/fifo";
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);

  const auto result = shred({link, partner, fifo}, 3);

  EXPECT_EQ(result.filesShredded, 0);
  EXPECT_TRUE(layer_->writes.empty());
  EXPECT_EQ(runner_->prompts(), 0u);
  EXPECT_EQ(halcyra::testing::readFile(target), "precious");
  EXPECT_EQ(halcyra::testing::readFile(tmp_ / "keep/shared"), "both names");
  EXPECT_TRUE(halcyra::testing::existsNoFollow(link));
  EXPECT_TRUE(halcyra::testing::existsNoFollow(fifo));
}

TEST_F(ResolveFilesTest, PathWithANulByteIsRefusedBeforeItCanNameAShorterPath) {
  const auto victim = tmp_.file("in/victim", "intact");
  const std::string withNul = victim + std::string(1, '\0') + "tail";
  std::vector<ShredderRefusal> refused;
  EXPECT_TRUE(service().resolveFiles({withNul}, refused).empty());
  ASSERT_EQ(refused.size(), 1u);

  // A record made by hand takes the same way out when shredded.
  std::vector<ShredderRefusal> refusedAtShred;
  const auto result = service().shredFiles({ShredderFile{"ID", withNul, "victim", 6, true}}, 1, {}, &refusedAtShred);
  EXPECT_EQ(result.filesShredded, 0);
  EXPECT_EQ(refusedAtShred.size(), 1u);
  EXPECT_EQ(runner_->prompts(), 0u);
  EXPECT_EQ(halcyra::testing::readFile(victim), "intact");
}

} // namespace
} // namespace halcyra::shredder::testing

namespace halcyra::shredder::testing {
namespace {

using MountedFolderTest = ShredderFixture;
using halcyra::testing::existsNoFollow;
using halcyra::testing::readFile;

TEST_F(MountedFolderTest, AFolderMountedInsideIsNeitherListedNorShredded) {
  const auto precious = tmp_.file("precious/letter.txt", "dear diary");
  const auto picked = tmp_.file("pick/a.bin", 100);
  const auto mountPoint = tmp_.mkdir("pick/mounted");
  const auto result = halcyra::testing::inPrivateMountNamespace([&] {
    if (!halcyra::testing::bindMount(tmp_ / "precious", mountPoint)) return 10;
    std::vector<ShredderRefusal> refused;
    auto engine = service();
    const auto files = engine.resolveFiles({tmp_ / "pick"}, refused);
    if (files.size() != 1 || files[0].path != picked) return 11;
    if (refused.size() != 1 || refused[0].path != mountPoint) return 12;
    // The mount point given by name is a folder whose files are on the mount: a walk of its own.
    engine.shredFiles(files, 1, {});
    return 0;
  });
  if (!result) GTEST_SKIP() << "no private mount namespace on this machine (needs root)";
  EXPECT_EQ(*result, 0);
  EXPECT_EQ(readFile(precious), "dear diary");
  EXPECT_FALSE(existsNoFollow(picked));
}

TEST_F(MountedFolderTest, TwoNamesOfOneFileAreOneFile) {
  const auto file = tmp_.file("real/doc", 10);
  tmp_.symlink("alias", tmp_ / "real");
  const auto files = service().resolveFiles({file, tmp_ / "alias/doc", tmp_ / "alias"});
  ASSERT_EQ(files.size(), 1u);
  EXPECT_EQ(files[0].path, file);
}

TEST_F(MountedFolderTest, AFolderSwappedForALinkAfterListingShredsNothingThroughIt) {
  const auto precious = tmp_.file("precious/doc", "precious");
  const auto listed = tmp_.file("docs/doc", 4096);
  auto engine = service();
  const auto files = engine.resolveFiles({tmp_ / "docs"});
  ASSERT_EQ(files.size(), 1u);
  // Between the question and the shredding, the listed folder becomes a link to another folder
  // holding a file of the same name.
  ASSERT_EQ(::rename((tmp_ / "docs").c_str(), (tmp_ / "docs-moved").c_str()), 0);
  tmp_.symlink("docs", tmp_ / "precious");
  std::vector<ShredderRefusal> refused;
  const auto result = engine.shredFiles(files, 1, {}, &refused);
  EXPECT_EQ(result.filesShredded, 0);
  ASSERT_EQ(refused.size(), 1u);
  EXPECT_EQ(refused[0].reason, "its folder was replaced since it was listed; nothing in it was touched");
  EXPECT_EQ(readFile(precious), "precious");
  EXPECT_EQ(runner_->prompts(), 0u);
  EXPECT_EQ(layer_->fillFiles.size(), 0u); // no fill went into the other folder either
  EXPECT_EQ(readFile(tmp_ / "docs-moved/doc").size(), 4096u);
}

} // namespace
} // namespace halcyra::shredder::testing
