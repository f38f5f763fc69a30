#include "DuplicatesShots.h"

#include <QVariant>

#include "core/Uuid.h"

namespace halcyra::app {
namespace {

using duplicates::DuplicateFile;
using duplicates::DuplicateGroup;
using duplicates::DuplicatesViewModel;

/// 2024-03-04 09:30 UTC plus `hours`.
duplicates::FileDate at(int hours) {
  return duplicates::FileDate(std::chrono::microseconds(1'709'544'600'000'000LL) + std::chrono::hours(hours));
}

/// A group as the scan leaves it: the paths oldest first, every copy but the first marked.
DuplicateGroup group(const char* hash, std::int64_t size, std::initializer_list<std::pair<const char*, int>> copies) {
  DuplicateGroup result;
  result.id = core::makeUuid();
  result.fileHash = hash;
  result.fileSize = size;
  for (const auto& [path, hours] : copies) {
    result.files.push_back(DuplicateFile{core::makeUuid(), path, size, at(hours), !result.files.empty()});
  }
  const std::string first = result.files.front().path;
  result.representativeFileName = first.substr(first.rfind('/') + 1);
  return result;
}

/// Groups of the kinds people find, largest reclaimable first as the engine orders them.
std::vector<DuplicateGroup> sampleGroups() {
  const std::int64_t MB = 1000 * 1000;
  return {
      group("9f2c4e81a07b", 820 * MB,
            {{"/Users/sam/Movies/Holiday 2023.mov", -2000}, {"/Users/sam/Desktop/Holiday 2023.mov", -300}}),
      group("51d0aa3c9e42", 312 * MB,
            {{"/Users/sam/Downloads/Xcode-Tools.dmg", -900},
             {"/Users/sam/Downloads/Old Installers/Xcode-Tools.dmg", -880},
             {"/Users/sam/Documents/Setup/Xcode-Tools.dmg", -20}}),
      group("c3b9127fe5d0", 48 * MB,
            {{"/Users/sam/Projects/site-backup.zip", -700}, {"/Users/sam/Desktop/site-backup.zip", -650},
             {"/Users/sam/Downloads/site-backup.zip", -5}}),
      group("7e61f0b2d934", 9'600'000,
            {{"/Users/sam/Music/Summer Mix.mp3", -1500}, {"/Users/sam/Downloads/Summer Mix.mp3", -48}}),
      group("a40d5c7e1b88", 4'200'000,
            {{"/Users/sam/Pictures/Export/IMG_2041.HEIC", -400}, {"/Users/sam/Desktop/IMG_2041.HEIC", -30},
             {"/Users/sam/Downloads/IMG_2041.HEIC", -2}}),
      group("0be37d29f6c1", 2'800'000,
            {{"/Users/sam/Documents/Quarterly Report.pdf", -300}, {"/Users/sam/Downloads/Quarterly Report.pdf", -1}}),
      group("62fa90c4d7e3", 64'000,
            {{"/Users/sam/Documents/Budget 2024.xlsx", -1200}, {"/Users/sam/Documents/Copies/Budget 2024.xlsx", -600}}),
  };
}

} // namespace

std::shared_ptr<ScriptedDuplicateService> scriptedDuplicates() {
  auto service = std::make_shared<ScriptedDuplicateService>();
  service->setResult(duplicates::DuplicateCleanResult{1'575'200'000, 10, 1.3});
  return service;
}

void shootDuplicates(HalcyraApp& app, ScriptedDuplicateService& service, const ShotTools& tools) {
  auto& viewModel = app.duplicatesViewModel();
  auto& state = app.appState();
  auto& logger = app.debugLogger();
  const auto engine = std::shared_ptr<duplicates::DuplicateServiceProtocol>(&service, [](auto*) {});
  const auto reach = [&](DuplicatesViewModel::Phase phase, const char* what) {
    if (!tools.waitFor([&] { return viewModel.phase() == phase; })) tools.fail(QStringLiteral("duplicates: ") + what);
  };

  state.setSelectedNavItem(NavigationItem::duplicates);
  tools.shot(QStringLiteral("duplicates-1-idle"));

  // "Choose Folder" opens the folder dialog; cancelling it leaves the page as it was. No
  // picture: the dialog lists the real home of whoever renders.
  if (QObject* dialog = tools.find("duplicatesFolderDialog")) {
    QMetaObject::invokeMethod(dialog, "open");
    tools.waitFor([&] { return dialog->property("visible").toBool(); });
    QMetaObject::invokeMethod(dialog, "reject");
    tools.waitFor([&] { return !dialog->property("visible").toBool(); });
    if (viewModel.phase() != DuplicatesViewModel::Phase::idle) tools.fail(QStringLiteral("duplicates: cancelling the dialog scanned"));
  } else {
    tools.fail(QStringLiteral("duplicates: no folder dialog"));
  }

  // A folder without duplicates brings the idle page back with its message.
  service.setGroups({});
  viewModel.scan("/Users/sam/Music", engine, logger);
  reach(DuplicatesViewModel::Phase::idle, "a scan without duplicates did not end idle");
  tools.waitFor([&] { return viewModel.noDuplicatesFound(); });
  tools.shot(QStringLiteral("duplicates-2-none-found"));
  service.setGroups(sampleGroups());

  service.holdNext();
  viewModel.scan("/Users/sam", engine, logger);
  if (!tools.waitFor([&] { return !viewModel.scanStatus().isEmpty(); })) {
    tools.fail(QStringLiteral("duplicates: the scan reported no status"));
  }
  tools.shot(QStringLiteral("duplicates-3-scanning"));
  service.release();
  reach(DuplicatesViewModel::Phase::preview, "the scan did not reach the result");
  tools.shot(QStringLiteral("duplicates-4-result"));

  // A search, another group picked, one copy unmarked by hand.
  QObject* result = tools.find("duplicatesResult");
  if (result == nullptr) {
    tools.fail(QStringLiteral("duplicates: no result screen"));
    return;
  }
  result->setProperty("searchText", QStringLiteral("img"));
  const QString photos = QString::fromStdString(viewModel.groups()[4].id);
  result->setProperty("selectedGroupId", photos);
  viewModel.toggleFile(photos, QString::fromStdString(viewModel.groups()[4].files[1].id));
  tools.shot(QStringLiteral("duplicates-5-search"));
  result->setProperty("searchText", QString());
  result->setProperty("selectedGroupId", QString());

  QObject* menu = tools.find("strategyMenu");
  if (menu != nullptr) {
    QMetaObject::invokeMethod(menu, "open");
    tools.shot(QStringLiteral("duplicates-6-auto-select"));
    QMetaObject::invokeMethod(menu, "close");
  } else {
    tools.fail(QStringLiteral("duplicates: no strategy menu"));
  }

  viewModel.requestConfirmation();
  tools.shot(QStringLiteral("duplicates-7-confirming"));

  service.holdNext();
  viewModel.confirmDelete(engine, state, logger);
  tools.waitFor([&] { return !viewModel.scanStatus().isEmpty(); });
  tools.shot(QStringLiteral("duplicates-8-deleting"));
  service.release();
  reach(DuplicatesViewModel::Phase::summary, "the delete run did not reach the summary");
  tools.shot(QStringLiteral("duplicates-9-summary"));

  service.failNextScan();
  viewModel.rescan(engine, logger);
  reach(DuplicatesViewModel::Phase::error, "a failed scan did not show the error");
  tools.shot(QStringLiteral("duplicates-10-error"));
  viewModel.reset();
}

} // namespace halcyra::app
