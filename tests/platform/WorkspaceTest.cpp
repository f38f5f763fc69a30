#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/ProcessRunner.h"
#include "platform/Workspace.h"
#include "support/TempDir.h"

using namespace halcyra::platform;
using halcyra::testing::existsNoFollow;
using halcyra::testing::readFile;
using halcyra::testing::TempDir;

namespace {

FreedesktopWorkspace workspaceWithTrash(const std::string& trash,
                                        std::function<std::string(const std::string&)> mountPointOf = {}) {
  return FreedesktopWorkspace(std::make_shared<SystemProcessRunner>(), trash, std::move(mountPointOf));
}

void expectRecord(const std::string& recordPath, const std::string& encodedPath) {
  const std::string record = readFile(recordPath);
  const std::regex shape("\\[Trash Info\\]\nPath=(.*)\nDeletionDate=\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d\n");
  std::smatch match;
  ASSERT_TRUE(std::regex_match(record, match, shape)) << record;
  EXPECT_EQ(match[1].str(), encodedPath);
}

int modeOf(const std::string& path) {
  struct stat info {};
  ::lstat(path.c_str(), &info);
  return static_cast<int>(info.st_mode & 07777);
}

// A scratch folder on another file system than the temporary folder, when the machine has one.
class OtherVolume {
public:
  OtherVolume() {
    struct stat shm {};
    struct stat tmp {};
    TempDir probe;
    if (::stat("/dev/shm", &shm) != 0 || ::stat(probe.path().c_str(), &tmp) != 0 || shm.st_dev == tmp.st_dev) return;
    std::string pattern = "/dev/shm/halcyra-test-XXXXXX";
    if (::mkdtemp(pattern.data()) != nullptr) path_ = pattern;
  }
  ~OtherVolume() {
    std::error_code error;
    if (!path_.empty()) std::filesystem::remove_all(path_, error);
  }
  const std::string& path() const { return path_; }

private:
  std::string path_;
};

} // namespace

TEST(FreedesktopWorkspace, MovesAnItemIntoTheHomeTrashWithItsRecord) {
  TempDir dir;
  const std::string trash = dir / "home/.local/share/Trash";
  auto workspace = workspaceWithTrash(trash);
  const auto item = dir.file("docs/a b%é.txt", "content");
  const auto moved = workspace.moveToTrash(item);
  ASSERT_TRUE(moved.succeeded()) << moved.message;
  EXPECT_EQ(moved.trashedPath, trash + "/files/a b%é.txt");
  EXPECT_FALSE(existsNoFollow(item));
  EXPECT_EQ(readFile(moved.trashedPath), "content");
  expectRecord(trash + "/info/a b%é.txt.trashinfo", FreedesktopWorkspace::percentEncoded(item));
  EXPECT_NE(FreedesktopWorkspace::percentEncoded(item).find("/docs/a%20b%25%C3%A9.txt"), std::string::npos);
  EXPECT_EQ(modeOf(trash), 0700);

  const auto folder = dir.file("project/src/main.c", "int main;");
  const auto movedFolder = workspace.moveToTrash(dir / "project");
  ASSERT_TRUE(movedFolder.succeeded()) << movedFolder.message;
  EXPECT_EQ(readFile(trash + "/files/project/src/main.c"), "int main;");
  EXPECT_FALSE(existsNoFollow(dir / "project"));
}

TEST(FreedesktopWorkspace, EveryItemGetsAFreeNameAndNothingIsOverwritten) {
  TempDir dir;
  const std::string trash = dir / "Trash";
  auto workspace = workspaceWithTrash(trash);
  dir.file("Trash/files/report.3.pdf", "already there, without a record");
  std::vector<std::string> names;
  for (const char* folder : {"one", "two", "three"}) {
    const auto item = dir.file(std::string(folder) + "/report.pdf", folder);
    const auto moved = workspace.moveToTrash(item);
    ASSERT_TRUE(moved.succeeded()) << moved.message;
    EXPECT_EQ(readFile(moved.trashedPath), folder);
    names.push_back(moved.trashedPath.substr(moved.trashedPath.rfind('/') + 1));
  }
  EXPECT_EQ(names, (std::vector<std::string>{"report.pdf", "report.2.pdf", "report.4.pdf"}));
  EXPECT_EQ(readFile(trash + "/files/report.3.pdf"), "already there, without a record");
  EXPECT_FALSE(existsNoFollow(trash + "/info/report.3.pdf.trashinfo"));
  expectRecord(trash + "/info/report.4.pdf.trashinfo", FreedesktopWorkspace::percentEncoded(dir / "three/report.pdf"));

  // A name at the limit of the file system still leaves room for the record's suffix.
  const auto longItem = dir.file("long/" + std::string(250, 'n'), "long");
  const auto moved = workspace.moveToTrash(longItem);
  ASSERT_TRUE(moved.succeeded()) << moved.message;
  EXPECT_EQ(readFile(moved.trashedPath), "long");
}

TEST(FreedesktopWorkspace, LinkGoesAsItselfEvenWithATrailingSlash) {
  TempDir dir;
  auto workspace = workspaceWithTrash(dir / "Trash");
  const auto kept = dir.file("target/keep.txt", "keep");
  const auto link = dir.symlink("place/link", dir / "target");
  const auto moved = workspace.moveToTrash(link + "/");
  ASSERT_TRUE(moved.succeeded()) << moved.message;
  EXPECT_FALSE(existsNoFollow(link));
  EXPECT_TRUE(std::filesystem::is_symlink(moved.trashedPath));
  EXPECT_EQ(readFile(kept), "keep");
}

TEST(FreedesktopWorkspace, MissingItemsTheRootAndTheTrashItselfAreRefused) {
  TempDir dir;
  const std::string trash = dir / "Trash";
  auto workspace = workspaceWithTrash(trash);
  EXPECT_EQ(workspace.moveToTrash(dir / "nothing").status, TrashOutcome::Status::missing);
  EXPECT_EQ(workspace.moveToTrash("/").status, TrashOutcome::Status::failed);
  EXPECT_EQ(workspace.moveToTrash("").status, TrashOutcome::Status::failed);
  dir.file("Trash/files/old", "old");
  EXPECT_EQ(workspace.moveToTrash(trash).status, TrashOutcome::Status::failed);
  EXPECT_EQ(workspace.moveToTrash(trash + "/files/old").status, TrashOutcome::Status::failed);
  EXPECT_EQ(workspace.moveToTrash(dir.path()).status, TrashOutcome::Status::failed); // holds the Trash
  EXPECT_EQ(readFile(trash + "/files/old"), "old");
}

TEST(FreedesktopWorkspace, ItemOnAnotherVolumeGoesToThatVolumesOwnTrashOnlyWhenItIsSafe) {
  OtherVolume home;
  if (home.path().empty()) GTEST_SKIP() << "no second file system to put the home Trash on";
  TempDir volume;
  const auto top = [&](const std::string&) { return volume.path(); };
  auto workspace = workspaceWithTrash(home.path() + "/Trash", top);
  const std::string ownTrash = volume / (".Trash-" + std::to_string(::geteuid()));

  const auto item = volume.file("data/set 1.bin", "bytes");
  const auto moved = workspace.moveToTrash(item);
  ASSERT_TRUE(moved.succeeded()) << moved.message;
  EXPECT_EQ(moved.trashedPath, ownTrash + "/files/set 1.bin");
  EXPECT_EQ(readFile(moved.trashedPath), "bytes");
  EXPECT_EQ(modeOf(ownTrash), 0700);
  expectRecord(ownTrash + "/info/set 1.bin.trashinfo", "data/set%201.bin"); // relative to the top
  EXPECT_FALSE(existsNoFollow(home.path() + "/Trash/files"));

  // A Trash that others may enter, or a link in its place, is not used: the item stays.
  ::chmod(ownTrash.c_str(), 0755);
  const auto second = volume.file("data/second", "2");
  EXPECT_EQ(workspace.moveToTrash(second).status, TrashOutcome::Status::noTrash);
  EXPECT_EQ(readFile(second), "2");
  std::filesystem::remove_all(ownTrash);
  volume.mkdir("elsewhere");
  volume.symlink(".Trash-" + std::to_string(::geteuid()), volume / "elsewhere");
  EXPECT_EQ(workspace.moveToTrash(second).status, TrashOutcome::Status::noTrash);
  EXPECT_EQ(readFile(second), "2");
  EXPECT_TRUE(std::filesystem::is_empty(volume / "elsewhere"));
}

TEST(FreedesktopWorkspace, RevealAndOpenGoThroughXdgOpenWithTheirArgumentAlone) {
  TempDir dir;
  const auto log = dir / "calls";
  const auto fake = dir.script("xdg-open", "printf '%s|' \"$@\" >> '" + log + "'\nprintf '\\n' >> '" + log +
                                               "'\n[ \"$1\" = https://fails.example ] && exit 4\nexit 0");
  auto runner = std::make_shared<SystemProcessRunner>(std::map<std::string, std::string>{{"/usr/bin/xdg-open", fake}});
  FreedesktopWorkspace workspace(runner, dir / "Trash");
  EXPECT_TRUE(workspace.revealInFileManager(dir / "some folder/file.txt"));
  EXPECT_TRUE(workspace.openUrl("https://example.org/a b"));
  EXPECT_FALSE(workspace.openUrl("--help"));
  EXPECT_FALSE(workspace.openUrl("https://fails.example"));
  EXPECT_EQ(readFile(log), (dir / "some folder") + "|\nhttps://example.org/a b|\nhttps://fails.example|\n");
}
