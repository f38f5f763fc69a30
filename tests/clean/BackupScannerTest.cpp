#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ScanFixture.h"
#include "clean/BackupScanner.h"

using namespace halcyra;
using namespace halcyra::testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

namespace {

struct BackupFixture : ScannerContextFixture {
  std::map<std::string, std::string> tools;

  void tool(const std::string& path, const std::string& body) { tools[path] = dir.script("tools" + path, body); }
  // A standard set of answers: a destination, no backup running, no network volumes.
  void idleTimeMachine() {
    tool("/usr/bin/tmutil", "case \"$1\" in destinationinfo) echo 'Name : Backup';; status) echo 'Running = 0;';; esac");
    tool("/bin/df", "exit 0");
    tool("/usr/bin/hdiutil", "exit 0");
  }
  void inProgress(const std::string& relative, std::int64_t size, std::int64_t ageDays) const {
    dir.file("root/" + relative + "/file", size);
    TempDir::setAge(root + "/" + relative, ageDays * kDay);
  }
  std::vector<clean::CleanItem> scan() {
    platform::SystemProcessRunner runner(tools);
    return clean::BackupScanner(context, runner).scanTimeMachineIncomplete();
  }
};

} // namespace

TEST(IncompleteBackups, FindsOldInterruptedBackupsOnLocalVolumes) {
  BackupFixture f;
  f.idleTimeMachine();
  // Nothing inside an in-progress folder is looked at.
  f.inProgress("Volumes/Backup/Backups.backupdb/mac/2024-01-01-120000.inProgress/y.inProgress", 900, 5);
  f.inProgress("Volumes/Backup/Backups.backupdb/mac/2024-01-01-120000.inProgress", 300, 3);
  f.inProgress("Volumes/Backup/Backups.backupdb/mac/2024-02-01-120000.inprogress", 200, 5);
  f.inProgress("Volumes/Backup/Backups.backupdb/mac/2024-03-01-120000.inProgress", 900, 1);     // too young
  f.inProgress("Volumes/Backup/Backups.backupdb/mac/deep/er/x.inProgress", 900, 5);            // depth 4
  f.inProgress("Volumes/Other/.MobileBackups/x.inProgress", 100, 5);
  f.inProgress("Volumes/MacintoshHD/Backups.backupdb/x.inProgress", 900, 5);
  const auto items = f.scan();
  EXPECT_THAT(itemPaths(items, f.root + "/Volumes"),
              ElementsAre("Backup/Backups.backupdb/mac/2024-01-01-120000.inProgress",
                          "Backup/Backups.backupdb/mac/2024-02-01-120000.inprogress",
                          "Other/.MobileBackups/x.inProgress"));
  EXPECT_FALSE(items.front().isSelected);
}

TEST(IncompleteBackups, NothingWhileABackupRunsOrNoDestinationOrNoTool) {
  const std::vector<std::string> tmutilScripts{
      "case \"$1\" in destinationinfo) echo 'Name : Backup';; status) printf '{\\n    Running = 1;\\n}\\n';; esac",
      "case \"$1\" in destinationinfo) echo 'Name : Backup';; status) echo '\"Running\" = 1';; esac",
      "echo 'tmutil: No destinations configured.'",
      ""};
  for (const auto& script : tmutilScripts) {
    BackupFixture f;
    f.idleTimeMachine();
    if (script.empty()) f.tools.erase("/usr/bin/tmutil");
    else f.tool("/usr/bin/tmutil", script);
    f.inProgress("Volumes/Backup/Backups.backupdb/x.inProgress", 100, 5);
    EXPECT_THAT(f.scan(), IsEmpty()) << script;
  }
}

TEST(IncompleteBackups, NetworkVolumesAndLinkedVolumesArePassedOver) {
  BackupFixture f;
  f.idleTimeMachine();
  f.tool("/bin/df", "cat <<'EOF'\n"
                    "Filesystem    Type  512-blocks  Used Available Capacity iused ifree Mounted on\n"
                    "//me@nas/share smbfs 100 50 50 50% 0 0 /Volumes/NAS Share\n"
                    "/dev/disk3s1  apfs  100 50 50 50% 0 0 /Volumes/Backup\n"
                    "EOF");
  f.inProgress("Volumes/NAS Share/Backups.backupdb/x.inProgress", 100, 5);
  f.inProgress("Volumes/Backup/Backups.backupdb/y.inProgress", 100, 5);
  f.dir.symlink("root/Volumes/Linked", f.root + "/Volumes/Backup");
  EXPECT_THAT(itemPaths(f.scan(), f.root + "/Volumes"), ElementsAre("Backup/Backups.backupdb/y.inProgress"));
}

TEST(IncompleteBackups, BackupBundlesAreSearchedWhereTheyAreMounted) {
  BackupFixture f;
  f.idleTimeMachine();
  f.dir.mkdir("root/Volumes/NAS/Mac.sparsebundle");
  f.dir.mkdir("root/Volumes/NAS/Old.sparsebundle");
  f.inProgress("Volumes/Backups of Mac/2024-01-01.inProgress", 100, 5);
  f.tool("/usr/bin/hdiutil", "cat <<'EOF'\n"
                             "================================================\n"
                             "image-path      : /Volumes/NAS/Old.sparsebundle\n"
                             "/dev/disk5\tGUID_partition_scheme\n"
                             "================================================\n"
                             "image-path      : /Volumes/NAS/Mac.sparsebundle\n"
                             "/dev/disk4\tGUID_partition_scheme\n"
                             "   /Volumes/Backups of Mac   \n"
                             "EOF");
  // The mounted bundle is a volume of its own too; it is found once through /Volumes and once
  // through the bundle.
  EXPECT_THAT(itemPaths(f.scan(), f.root + "/Volumes"),
              ElementsAre("Backups of Mac/2024-01-01.inProgress", "Backups of Mac/2024-01-01.inProgress"));
}

TEST(IncompleteBackups, ImageListingNeverLeadsOutsideTheVolumesFolder) {
  const std::string listing = "image-path      : /Volumes/NAS/Mac.sparsebundle\n"
                              "/Volumes/../Users/me/Documents\n"
                              "/Volumes/./Elsewhere\n"
                              "/Volumes/Trailing/\n"
                              "/private/Volumes/x\n"
                              "  /Volumes/Backups of Mac  \n"
                              "image-path      : /Users/me/Other.dmg\n"
                              "/Volumes/Other\n";
  EXPECT_THAT(clean::BackupScanner::parseMountedBundlePaths(listing, "Mac.sparsebundle"),
              ElementsAre("/Volumes/Backups of Mac"));
}

TEST(IncompleteBackups, NetworkMountPointsComeFromNineFieldLinesOfKnownTypes) {
  const std::string output = "Filesystem Type Size Used Avail Capacity iused ifree Mounted on\n"
                             "srv:/export NFS 1 1 1 1% 1 1 /Volumes/export\n"
                             "//srv/x cifs 1 1 1 1% 1 1 /mnt/with  two blanks\n"
                             "short smbfs 1 1 /too/few\n"
                             "/dev/disk1 apfs 1 1 1 1% 1 1 /\n";
  EXPECT_THAT(clean::BackupScanner::parseNetworkMountPoints(output),
              UnorderedElementsAre("/Volumes/export", "/mnt/with  two blanks"));
}
