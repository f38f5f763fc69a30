#include "ShredderShots.h"

#include <QDropEvent>
#include <QMimeData>
#include <QQuickItem>
#include <QQuickWindow>
#include <QUrl>
#include <QVariant>

namespace halcyra::app {

using shredder::ShredderViewModel;

std::shared_ptr<ScriptedShredderService> scriptedShredder() {
  const std::int64_t MB = 1000 * 1000;
  auto service = std::make_shared<ScriptedShredderService>();
  service->setFiles({
      {"/Users/sam/Documents/Tax Return 2023.pdf", 2'400'000},
      {"/Users/sam/Documents/Passport Scan.jpg", 3'100'000},
      {"/Users/sam/Documents/Contracts/Employment Agreement.docx", 184'000},
      {"/Users/sam/Documents/Contracts/NDA - Northwind.pdf", 96'000},
      {"/Users/sam/Desktop/Bank Statements 2022.zip", 48 * MB},
      {"/Users/sam/Downloads/old-laptop-backup.sparsebundle.tar", 1'250 * MB},
      {"/Users/sam/Desktop/passwords.txt", 2'048},
  });
  service->setProgress("Pass 2/3: Bank Statements 2022.zip", 0.46);
  service->setResult(shredder::ShredResult{6, 1'300'782'048, 7.4, 3});
  return service;
}

namespace {

/// Opens a picker the way the screen's buttons do and cancels it: it must come up with the
/// wording of the page it was opened from and add nothing. No picture: a picker lists the
/// folders of whoever renders.
void openAndCancel(const ShotTools& tools, const char* opener, bool fromList, const char* dialogName,
                   const QString& title, const QString& acceptLabel) {
  QObject* view = tools.find("shredderView");
  QObject* dialog = tools.find(dialogName);
  if (view == nullptr || dialog == nullptr) {
    tools.fail(QStringLiteral("shredder: no %1").arg(QLatin1String(dialogName)));
    return;
  }
  QMetaObject::invokeMethod(view, opener, Q_ARG(QVariant, fromList));
  if (!tools.waitFor([&] { return dialog->property("visible").toBool(); })) {
    tools.fail(QStringLiteral("shredder: %1 did not open").arg(QLatin1String(dialogName)));
  }
  if (dialog->property("title").toString() != title || dialog->property("acceptLabel").toString() != acceptLabel) {
    tools.fail(QStringLiteral("shredder: %1 is worded \"%2\" / \"%3\"")
                   .arg(QLatin1String(dialogName), dialog->property("title").toString(),
                        dialog->property("acceptLabel").toString()));
  }
  QMetaObject::invokeMethod(dialog, "reject");
  tools.waitFor([&] { return !dialog->property("visible").toBool(); });
}

/// Drags file URLs from elsewhere over the middle of the shredder's page, as a file manager
/// would; `drop` false leaves the drag hovering.
void dragFiles(const ShotTools& tools, const QList<QUrl>& urls, bool drop, QMimeData& data) {
  auto* view = qobject_cast<QQuickItem*>(tools.find("shredderView"));
  if (view == nullptr || view->window() == nullptr) {
    tools.fail(QStringLiteral("shredder: no page to drop on"));
    return;
  }
  data.setUrls(urls);
  const QPointF where = view->mapToScene(QPointF(view->width() / 2, view->height() / 2));
  if (!drop) {
    QDragEnterEvent enter(where.toPoint(), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(view->window(), &enter);
    QDragMoveEvent move(where.toPoint(), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(view->window(), &move);
    return;
  }
  QDropEvent dropped(where, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QCoreApplication::sendEvent(view->window(), &dropped);
}

} // namespace

void shootShredder(HalcyraApp& app, ScriptedShredderService& service, const ShotTools& tools) {
  auto& viewModel = app.shredderViewModel();
  auto& logger = app.debugLogger();
  const auto engine = std::shared_ptr<shredder::ShredderServiceProtocol>(&service, [](auto*) {});
  const auto reach = [&](ShredderViewModel::Phase phase, const char* what) {
    if (!tools.waitFor([&] { return viewModel.phase() == phase; })) tools.fail(QStringLiteral("shredder: ") + what);
  };
  const auto addSample = [&] {
    viewModel.addFiles(std::vector<std::string>{"/Users/sam/Documents"}, engine);
    reach(ShredderViewModel::Phase::preview, "the picked files were not listed");
  };

  app.appState().setSelectedNavItem(NavigationItem::shredder);
  tools.shot(QStringLiteral("shredder-1-idle"));
  openAndCancel(tools, "pickFiles", false, "shredderFileDialog", QStringLiteral("Choose files or folders to securely shred"),
                QStringLiteral("Shred"));
  openAndCancel(tools, "pickFolder", false, "shredderFolderDialog",
                QStringLiteral("Choose files or folders to securely shred"), QStringLiteral("Shred"));
  if (viewModel.phase() != ShredderViewModel::Phase::idle || viewModel.fileCount() != 0) {
    tools.fail(QStringLiteral("shredder: a cancelled picker added files"));
  }

  // Files dragged over the page light up the drop zone; dropping them lists what they hold.
  QMimeData dragged;
  const QList<QUrl> urls{QUrl::fromLocalFile(QStringLiteral("/Users/sam/Documents")),
                         QUrl::fromLocalFile(QStringLiteral("/Users/sam/Desktop/passwords.txt"))};
  dragFiles(tools, urls, false, dragged);
  QObject* dropArea = tools.find("shredderDropArea");
  if (dropArea == nullptr || !dropArea->property("containsDrag").toBool()) {
    tools.fail(QStringLiteral("shredder: the drop zone did not take the drag"));
  }
  tools.shot(QStringLiteral("shredder-2-drop"));
  dragFiles(tools, urls, true, dragged);
  reach(ShredderViewModel::Phase::preview, "the dropped files were not listed");

  // The list with one file unticked and seven passes chosen.
  viewModel.toggleFile(QString::fromStdString(viewModel.files()[4].id));
  viewModel.setPasses(7);
  tools.shot(QStringLiteral("shredder-3-list"));
  openAndCancel(tools, "pickFiles", true, "shredderFileDialog", QStringLiteral("Choose more files to shred"),
                QStringLiteral("Add"));

  // A folder chosen in the picker reaches the engine; its files are listed already, so the
  // list stays as it is.
  if (QObject* dialog = tools.find("shredderFolderDialog")) {
    QMetaObject::invokeMethod(tools.find("shredderView"), "pickFolder", Q_ARG(QVariant, true));
    tools.waitFor([&] { return dialog->property("visible").toBool(); });
    dialog->setProperty("selectedFolder", QUrl::fromLocalFile(QStringLiteral("/Users/sam/Desktop")));
    QMetaObject::invokeMethod(dialog, "accept");
    if (!tools.waitFor([&] { return service.lastPicked() == std::vector<std::string>{"/Users/sam/Desktop"}; })) {
      tools.fail(QStringLiteral("shredder: the folder picked did not reach the engine"));
    }
    tools.waitFor([&] { return !viewModel.isResolving(); });
    if (viewModel.fileCount() != 7) tools.fail(QStringLiteral("shredder: a folder already listed was listed again"));
  }

  viewModel.requestConfirmation();
  tools.shot(QStringLiteral("shredder-4-confirming"));

  service.holdNext();
  viewModel.confirmShred(engine, logger);
  if (!tools.waitFor([&] { return !viewModel.progressMessage().isEmpty(); })) {
    tools.fail(QStringLiteral("shredder: the run reported no progress"));
  }
  tools.shot(QStringLiteral("shredder-5-shredding"));
  service.release();
  reach(ShredderViewModel::Phase::summary, "the run did not end in the summary");
  tools.shot(QStringLiteral("shredder-6-summary"));

  viewModel.reset();
  addSample();
  service.failNextRun();
  viewModel.confirmShred(engine, logger);
  reach(ShredderViewModel::Phase::error, "the failed run did not show its error");
  tools.shot(QStringLiteral("shredder-7-error"));

  viewModel.reset();
  viewModel.setPasses(3);
}

} // namespace halcyra::app
