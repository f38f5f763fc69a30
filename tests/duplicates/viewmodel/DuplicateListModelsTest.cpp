#include <gtest/gtest.h>

#include <QFile>
#include <QSignalSpy>

#include "DuplicatesTestGroups.h"
#include "FakeDuplicateService.h"
#include "QtPrinting.h"
#include "app/SymbolTable.h"
#include "duplicates/viewmodel/DuplicatesViewModel.h"
#include "duplicates/viewmodel/FileIcons.h"

using halcyra::duplicates::DuplicateFilesModel;
using halcyra::duplicates::DuplicateGroup;
using halcyra::duplicates::DuplicateGroupsModel;
using halcyra::duplicates::DuplicatesViewModel;
using halcyra::testing::copyOf;
using halcyra::testing::groupOf;

namespace {

std::vector<DuplicateGroup> sample() {
  return {groupOf("g1", "Holiday.JPG",
                  {copyOf("a", "/data/trip/Holiday.JPG", 0, false), copyOf("b", "/data/backup/Holiday.JPG", 4, true)}),
          groupOf("g2", "notes.txt",
                  {copyOf("c", "/data/holiday plans/notes.txt", 1, false), copyOf("d", "/notes.txt", 2, true),
                   copyOf("e", "/data/x/notes.txt", 3, true)})};
}

QStringList column(const QAbstractItemModel& model, int role) {
  QStringList values;
  for (int row = 0; row < model.rowCount(); ++row) values.append(model.data(model.index(row, 0), role).toString());
  return values;
}

} // namespace

TEST(DuplicateGroupsModel, SearchMatchesTheRepresentativeNameOnlyWithoutRegardToCase) {
  const auto groups = sample();
  DuplicateGroupsModel model(groups);
  model.reload();
  EXPECT_EQ(model.groupIds(), (QStringList{"g1", "g2"}));

  model.setSearchText(QStringLiteral("holiday"));
  // "holiday plans" is a folder of g2's files, which the search does not look at.
  EXPECT_EQ(model.groupIds(), (QStringList{"g1"}));
  model.setSearchText(QStringLiteral("NOTES"));
  EXPECT_EQ(model.groupIds(), (QStringList{"g2"}));
  model.setSearchText(QStringLiteral("zzz"));
  EXPECT_EQ(model.rowCount(), 0);
  model.setSearchText(QString());
  EXPECT_EQ(model.rowCount(), 2);

  EXPECT_EQ(column(model, DuplicateGroupsModel::IconRole), (QStringList{"photo", "doc.text"}));
  EXPECT_EQ(column(model, DuplicateGroupsModel::CopiesRole), (QStringList{"2", "3"}));
  EXPECT_EQ(column(model, DuplicateGroupsModel::WastedTextRole), (QStringList{"4 KB", "8 KB"}));
}

TEST(DuplicateListModels, FollowTheViewModelsGroupsAndSelection) {
  auto service = std::make_shared<halcyra::testing::FakeDuplicateService>();
  service->groups = sample();
  halcyra::app::DebugLogger logger;
  DuplicatesViewModel viewModel(halcyra::platform::SystemPaths("/home/u"));
  viewModel.scan("/data", service, logger);
  QSignalSpy done(&viewModel, &DuplicatesViewModel::phaseChanged);
  ASSERT_TRUE(done.wait(10000));

  DuplicateGroupsModel& groups = *viewModel.groupsModel();
  DuplicateFilesModel& files = *viewModel.filesModel();
  EXPECT_EQ(groups.rowCount(), 2);

  // The detail panel shows the first group until one is picked, whatever the search shows.
  groups.setSearchText(QStringLiteral("nothing matches"));
  EXPECT_EQ(viewModel.activeGroupId(QString()), "g1");
  EXPECT_EQ(viewModel.activeGroupId(QStringLiteral("g2")), "g2");

  files.setGroupId(QStringLiteral("g2"));
  ASSERT_TRUE(files.hasGroup());
  EXPECT_EQ(files.name(), "notes.txt");
  EXPECT_EQ(files.fileHash(), "0123456789ab");
  EXPECT_EQ(files.copies(), 3);
  EXPECT_EQ(files.eachSizeText(), "4 KB");
  EXPECT_EQ(files.selectedCount(), 2);
  EXPECT_EQ(column(files, DuplicateFilesModel::NameRole), (QStringList{"notes.txt", "notes.txt", "notes.txt"}));
  EXPECT_EQ(column(files, DuplicateFilesModel::FolderRole), (QStringList{"/data/holiday plans", "/", "/data/x"}));
  EXPECT_EQ(column(files, DuplicateFilesModel::IsSelectedRole), (QStringList{"false", "true", "true"}));

  // A toggle reaches the panel's rows and figures and the list's row of that group.
  groups.setSearchText(QString());
  QSignalSpy rows(&files, &QAbstractItemModel::dataChanged);
  QSignalSpy figures(&files, &DuplicateFilesModel::groupChanged);
  QSignalSpy listRows(&groups, &QAbstractItemModel::dataChanged);
  viewModel.toggleFile(QStringLiteral("g2"), QStringLiteral("d"));
  EXPECT_EQ(rows.count(), 1);
  EXPECT_EQ(figures.count(), 1);
  ASSERT_EQ(listRows.count(), 1);
  EXPECT_EQ(listRows[0][0].value<QModelIndex>().row(), 1);
  EXPECT_EQ(files.selectedCount(), 1);
  EXPECT_EQ(column(groups, DuplicateGroupsModel::WastedTextRole), (QStringList{"4 KB", "4 KB"}));

  // New results: a group id of the old ones names nothing.
  viewModel.reset();
  EXPECT_FALSE(files.hasGroup());
  EXPECT_EQ(files.rowCount(), 0);
  EXPECT_EQ(groups.rowCount(), 0);
  EXPECT_EQ(viewModel.activeGroupId(QString()), "");
}

TEST(DuplicateFileIcons, ChosenByTheExtensionOfTheNameWithoutRegardToCase) {
  using halcyra::duplicates::fileIcon;
  EXPECT_EQ(fileIcon("/p/IMG_0001.HEIC"), "photo");
  EXPECT_EQ(fileIcon("/p/clip.MoV"), "film");
  EXPECT_EQ(fileIcon("/p/a.tar.gz"), "doc.zipper");
  EXPECT_EQ(fileIcon("/p/photos.jpg/README"), "doc"); // a folder's extension is not the file's
  EXPECT_EQ(fileIcon("/p/a.jpgx"), "doc");
  EXPECT_EQ(fileIcon("/p/.png"), "doc");

  // Every symbol a row can show has an icon in the bundled set.
  QFile table(QStringLiteral(HALCYRA_SOURCE_DIR "/src/app/icons/symbols.tsv"));
  ASSERT_TRUE(table.open(QIODevice::ReadOnly));
  const auto symbols = halcyra::app::SymbolTable::parse(table.readAll());
  for (const char* name : {"a.jpg", "a.mp4", "a.mp3", "a.pdf", "a.txt", "a.csv", "a.zip", "a.dmg", "a.app", "a"}) {
    EXPECT_FALSE(symbols.file(DuplicatesViewModel::fileIcon(QString::fromLatin1(name))).isEmpty()) << name;
  }
}
