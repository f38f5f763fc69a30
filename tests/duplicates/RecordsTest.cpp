#include <fcntl.h>
#include <sys/stat.h>

#include <gtest/gtest.h>

#include "core/JsonText.h"
#include "duplicates/DuplicateCoding.h"
#include "duplicates/SelectionStrategy.h"
#include "support/TempDir.h"

namespace halcyra::testing {
namespace {

using namespace std::chrono;
using duplicates::DuplicateFile;
using duplicates::DuplicateGroup;
using duplicates::FileDate;
using duplicates::SelectionStrategy;

FileDate at(int secondsSince1970, int micros = 0) { return FileDate(seconds(secondsSince1970) + microseconds(micros)); }

DuplicateGroup groupWithDates(const std::vector<FileDate>& dates) {
  DuplicateGroup group;
  group.fileSize = 10;
  for (std::size_t i = 0; i < dates.size(); ++i) group.files.push_back(DuplicateFile{"id" + std::to_string(i), "/f" + std::to_string(i), 10, dates[i], false});
  return group;
}

std::vector<bool> selection(const DuplicateGroup& group) {
  std::vector<bool> selected;
  for (const auto& file : group.files) selected.push_back(file.isSelected);
  return selected;
}

TEST(DuplicateRecordsTest, DatesAreWrittenAsRfc3339InUtcAndReadBack) {
  EXPECT_EQ(duplicates::dateText(at(0)), "1970-01-01T00:00:00Z");
  EXPECT_EQ(duplicates::dateText(at(1717243200, 250000)), "2024-06-01T12:00:00.250000Z");
  EXPECT_EQ(duplicates::dateText(duplicates::distantPast()), "0001-01-01T00:00:00Z");
  EXPECT_EQ(duplicates::dateText(at(-1)), "1969-12-31T23:59:59Z");

  for (const FileDate date : {at(0), at(1717243200, 250000), duplicates::distantPast(), at(-1), at(951782400)}) {
    EXPECT_EQ(duplicates::parseDateText(duplicates::dateText(date)), date);
  }
  EXPECT_EQ(duplicates::parseDateText("2024-06-01T14:00:00+02:00"), at(1717243200));
  EXPECT_EQ(duplicates::parseDateText("2024-06-01T11:30:00.5-00:30"), at(1717243200, 500000));
  for (const char* bad : {"", "2024-06-01", "2024-06-01T12:00:00", "2024-13-01T00:00:00Z", "2024-02-30T00:00:00Z",
                          "2024-06-01T12:00:00.Z", "2024-06-01T12:00:00Zjunk", "2024-06-01 12:00:00Z"}) {
    EXPECT_FALSE(duplicates::parseDateText(bad).has_value()) << bad;
  }
}

TEST(DuplicateRecordsTest, RecordsEncodeWithTheirFieldNamesAndDecodeUnchanged) {
  DuplicateGroup group = groupWithDates({at(1000), at(2000, 7)});
  group.id = "GROUP";
  group.fileHash = "0123456789ab";
  group.representativeFileName = "f0";
  group.files[1].isSelected = true;
  group.files[1].path = std::string("/caf\xC3\xA9/\xFF");

  const nlohmann::json json = group;
  EXPECT_EQ(json.size(), 5u);
  for (const char* key : {"id", "fileHash", "representativeFileName", "fileSize", "files"}) EXPECT_TRUE(json.contains(key)) << key;
  EXPECT_EQ(json["files"][0].size(), 5u);
  for (const char* key : {"id", "path", "size", "modificationDate", "isSelected"}) EXPECT_TRUE(json["files"][0].contains(key)) << key;
  EXPECT_EQ(json["files"][1]["modificationDate"], "1970-01-01T00:33:20.000007Z");
  // A path that is not UTF-8 is written as an escape, not dropped.
  EXPECT_NE(core::toJsonText(json).find("\\udcff"), std::string::npos);

  const auto decoded = json.get<DuplicateGroup>();
  EXPECT_EQ(decoded.id, group.id);
  EXPECT_EQ(decoded.fileHash, group.fileHash);
  ASSERT_EQ(decoded.files.size(), 2u);
  EXPECT_EQ(decoded.files[1].path, group.files[1].path);
  EXPECT_EQ(decoded.files[1].modificationDate, group.files[1].modificationDate);
  EXPECT_TRUE(decoded.files[1].isSelected);
  EXPECT_EQ(decoded.totalWastedSize(), 10);

  const duplicates::DuplicateCleanResult result{1234, 3, 0.5};
  const auto back = nlohmann::json(result).get<duplicates::DuplicateCleanResult>();
  EXPECT_EQ(back.freedBytes, 1234);
  EXPECT_EQ(back.filesDeleted, 3);
  EXPECT_EQ(back.duration, 0.5);

  nlohmann::json broken = json;
  broken["files"][0]["modificationDate"] = "yesterday";
  EXPECT_THROW(broken.get<DuplicateGroup>(), std::invalid_argument);
}

TEST(DuplicateRecordsTest, StrategiesAlwaysKeepExactlyOneCopy) {
  // Not in date order, so that the strategies must sort.
  DuplicateGroup group = groupWithDates({at(300), at(100), at(200)});
  duplicates::applyStrategy(group, SelectionStrategy::keepNewest);
  EXPECT_EQ(selection(group), (std::vector<bool>{false, true, true}));
  duplicates::applyStrategy(group, SelectionStrategy::keepOldest);
  EXPECT_EQ(selection(group), (std::vector<bool>{true, false, true}));

  // Equal dates: the group's order decides, and still one copy stays.
  DuplicateGroup tied = groupWithDates({at(5), at(5), at(5)});
  duplicates::applyStrategy(tied, SelectionStrategy::keepOldest);
  EXPECT_EQ(selection(tied), (std::vector<bool>{false, true, true}));
  duplicates::applyStrategy(tied, SelectionStrategy::keepNewest);
  EXPECT_EQ(selection(tied), (std::vector<bool>{true, true, false}));

  DuplicateGroup single = groupWithDates({at(1)});
  duplicates::applyStrategy(single, SelectionStrategy::keepNewest);
  EXPECT_EQ(selection(single), (std::vector<bool>{false}));
}

TEST(DuplicateRecordsTest, ACopyChangedSinceTheScanIsNoticed) {
  TempDir dir;
  const auto path = dir.file("copy", 100);
  struct stat info {};
  ASSERT_EQ(::stat(path.c_str(), &info), 0);
  DuplicateFile file{"ID", path, 100,
                     FileDate(seconds(info.st_mtim.tv_sec) + duration_cast<microseconds>(nanoseconds(info.st_mtim.tv_nsec))),
                     true};
  EXPECT_TRUE(duplicates::isUnchangedSinceScan(file));

  TempDir::setAge(path, 50);
  EXPECT_FALSE(duplicates::isUnchangedSinceScan(file));

  ::unlink(path.c_str());
  dir.symlink("copy", dir.file("elsewhere", 100));
  EXPECT_FALSE(duplicates::isUnchangedSinceScan(file));
}

} // namespace
} // namespace halcyra::testing
