// halcyra-shots: draws every screen of the window into PNG files without a display, with the
// cleaner driven through its real phases by a scripted engine. Exits 1 if QML reported any
// warning or error, so a test can run it.
//
//   halcyra-shots OUTPUT_DIR

#include <cstdio>
#include <cstdlib>
#include <functional>

#include <QDir>
#include <QFile>
#include <QElapsedTimer>
#include <QFont>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQmlComponent>
#include <QQmlError>
#include <QQmlExtensionPlugin>
#include <QQuickWindow>
#include <QSettings>
#include <QStringList>
#include <QTemporaryDir>

#include "AnalyzerShots.h"
#include "DashboardShots.h"
#include "DuplicatesShots.h"
#include "ScriptedCleanService.h"
#include "ShredderShots.h"
#include "StartupShots.h"
#include "app/HalcyraApp.h"
#include "core/Uuid.h"

Q_IMPORT_QML_PLUGIN(HalcyraPlugin)

namespace {

using halcyra::clean::CleanCategory;
using halcyra::clean::CleanItem;

CleanCategory category(const char* name, const char* icon, const char* section,
                       std::initializer_list<std::pair<const char*, std::int64_t>> items,
                       const char* skipReason = nullptr, bool whitelisted = false) {
  CleanCategory result;
  result.id = halcyra::core::makeUuid();
  result.name = name;
  result.icon = icon;
  result.section = section;
  result.isWhitelisted = whitelisted;
  if (skipReason) result.skipReason = skipReason;
  for (const auto& [path, size] : items) {
    result.items.push_back(CleanItem{halcyra::core::makeUuid(), path, size, !whitelisted});
  }
  result.isSelected = !whitelisted && !result.items.empty();
  return result;
}

std::vector<CleanCategory> sampleResults() {
  const std::int64_t MB = 1000 * 1000;
  return {
      category("System Caches", "gearshape.2", "System", {}, "Needs Full Disk Access"),
      category("System Logs", "doc.text", "System", {{"/Library/Logs/DiagnosticReports/old.log", 84 * MB}}),
      category("User Caches", "person.crop.circle", "User",
               {{"/Users/sam/Library/Caches/com.spotify.client", 1240 * MB},
                {"/Users/sam/Library/Caches/com.apple.Safari", 512 * MB},
                {"/Users/sam/Library/Caches/Homebrew", 388 * MB},
                {"/Users/sam/Library/Caches/com.tinyspeck.slackmacgap", 96 * MB},
                {"/Users/sam/Library/Caches/org.videolan.vlc/state.plist", 2 * MB}}),
      category("User Logs", "doc.text", "User",
               {{"/Users/sam/Library/Logs/JetBrains/idea.log", 41 * MB},
                {"/Users/sam/Library/Logs/zoom.us/zoom_stdout_stderr.log", 12 * MB}}),
      category("Downloads", "arrow.down.circle", "User", {{"/Users/sam/Downloads/installer.dmg", 900 * MB}}, nullptr,
               true),
      category("Chrome Cache", "globe", "Browsers",
               {{"/Users/sam/Library/Caches/Google/Chrome/Default/Cache", 734 * MB},
                {"/Users/sam/Library/Application Support/Google/Chrome/Default/Service Worker/CacheStorage", 210 * MB}}),
      category("Firefox Cache", "globe", "Browsers", {}, "Firefox is running"),
      category("Xcode Derived Data", "hammer", "Developer",
               {{"/Users/sam/Library/Developer/Xcode/DerivedData/Halcyra-abc", 6100 * MB},
                {"/Users/sam/Library/Developer/Xcode/DerivedData/Sketchbook-def", 2300 * MB}}),
      category("npm Cache", "shippingbox", "Developer", {{"/Users/sam/.npm/_cacache", 940 * MB}}),
      category("VS Code Cache", "chevron.left.forwardslash.chevron.right", "Editors",
               {{"/Users/sam/Library/Application Support/Code/CachedData", 455 * MB},
                {"/Users/sam/Library/Application Support/Code/logs/main.json", 3 * MB}}),
      category("Slack Cache", "bubble.left.and.bubble.right", "Applications",
               {{"/Users/sam/Library/Application Support/Slack/Cache", 380 * MB},
                {"/Users/sam/Library/Application Support/Slack/archive.zip", 41 * MB}}),
      category("Docker Data", "cube", "Virtualization",
               {{"/Users/sam/Library/Containers/com.docker.docker/Data/vms/0/data/Docker.raw", 3200 * MB}}),
  };
}

/// Lets the event loop run so bindings settle, images load and a frame is drawn.
void settle(int milliseconds = 250) {
  QElapsedTimer timer;
  timer.start();
  while (timer.elapsed() < milliseconds) {
    QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
  }
}

bool waitFor(const std::function<bool()>& condition) {
  QElapsedTimer timer;
  timer.start();
  while (!condition()) {
    if (timer.elapsed() > 10000) return false;
    QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
  }
  return true;
}

QStringList problems;

void collectMessages(QtMsgType type, const QMessageLogContext&, const QString& message) {
  std::fprintf(stderr, "%s\n", qPrintable(message));
  if (type != QtDebugMsg && type != QtInfoMsg) problems.append(message);
}

} // namespace

int main(int argc, char* argv[]) {
  if (argc != 2) {
    std::fputs("usage: halcyra-shots OUTPUT_DIR\n", stderr);
    return 2;
  }
  // A private runtime folder, as a desktop session would have; Qt warns without one.
  QTemporaryDir runtimeDir;
  if (qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR")) {
    QFile::setPermissions(runtimeDir.path(), QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    qputenv("XDG_RUNTIME_DIR", runtimeDir.path().toLocal8Bit());
  }
  qputenv("QT_QPA_PLATFORM", "offscreen");
  qputenv("QT_QUICK_BACKEND", "software");
  qInstallMessageHandler(collectMessages);

  QGuiApplication application(argc, argv);
  QGuiApplication::setApplicationName(QStringLiteral("Halcyra"));
  QGuiApplication::setApplicationVersion(QStringLiteral("1.2.0"));
  QFont font = QGuiApplication::font();
  font.setPixelSize(13);
  QGuiApplication::setFont(font);

  const QDir out(QString::fromLocal8Bit(argv[1]));
  if (!out.exists() && !QDir().mkpath(out.path())) {
    std::fprintf(stderr, "cannot create %s\n", argv[1]);
    return 1;
  }

  QTemporaryDir settingsDir;
  auto service = std::make_shared<halcyra::app::ScriptedCleanService>();
  service->setCategories(sampleResults());
  service->setResult(halcyra::clean::CleanResult{11'930'000'000, 17, 4.2});

  halcyra::app::HalcyraApp::Options options;
  options.defaults = std::make_unique<QSettings>(settingsDir.filePath(QStringLiteral("defaults.ini")), QSettings::IniFormat);
  options.cleanService = service;
  options.hasAccessPermission = true;
  auto diskAnalyzerService = halcyra::app::scriptedDiskAnalyzer();
  options.diskAnalyzerService = diskAnalyzerService;
  auto duplicateService = halcyra::app::scriptedDuplicates();
  options.duplicateService = duplicateService;
  auto shredderService = halcyra::app::scriptedShredder();
  options.shredderService = shredderService;
  auto startupService = halcyra::app::scriptedStartup();
  options.startupItemsService = startupService;
  auto systemCounters = std::make_shared<halcyra::app::ScriptedSystemCounters>();
  options.systemCounters = systemCounters;
  auto statistics = std::make_shared<halcyra::app::ScriptedStatistics>();
  options.statistics = statistics;
  halcyra::app::HalcyraApp app(std::move(options));

  QQmlApplicationEngine engine;
  QObject::connect(&engine, &QQmlEngine::warnings, [](const QList<QQmlError>& warnings) {
    for (const auto& warning : warnings) problems.append(warning.toString());
  });
  engine.addImportPath(QStringLiteral("qrc:/"));
  app.exposeTo(engine);

  // Motion off: every picture shows the state an animation ends in.
  QQmlComponent calm(&engine);
  calm.setData("import QtQuick\nimport Halcyra\nQtObject { Component.onCompleted: Theme.reduceMotion = true }", QUrl());
  std::unique_ptr<QObject> calmer(calm.create());

  engine.load(QUrl(QStringLiteral("qrc:/Halcyra/Main.qml")));
  auto* window = engine.rootObjects().isEmpty() ? nullptr : qobject_cast<QQuickWindow*>(engine.rootObjects().first());
  if (window == nullptr) {
    std::fputs("the window did not load\n", stderr);
    return 1;
  }

  int written = 0;
  const auto shot = [&](const QString& name) {
    settle();
    const QImage image = window->grabWindow();
    if (image.isNull() || !image.save(out.filePath(name + QStringLiteral(".png")))) {
      problems.append(QStringLiteral("could not write ") + name);
    } else {
      ++written;
    }
  };
  const auto find = [&](const char* name) { return window->findChild<QObject*>(QString::fromLatin1(name)); };

  auto& state = app.appState();
  auto& cleaner = app.cleanViewModel();
  auto& logger = app.debugLogger();

  // The tour, page by page.
  QObject* tour = find("onboarding");
  for (int page = 0; page < 10; ++page) {
    tour->setProperty("currentPage", page);
    shot(QStringLiteral("tour-%1").arg(page, 2, 10, QLatin1Char('0')));
  }

  // The tour's last button ends the tour and starts a scan in the cleaner, which then goes
  // through every phase.
  service->holdNext();
  QMetaObject::invokeMethod(tour, "completeOnboarding", Q_ARG(QVariant, true));
  if (!waitFor([&] { return !cleaner.scanStatus().isEmpty(); })) {
    problems.append(QStringLiteral("the tour's last page did not start a scan"));
  }
  shot(QStringLiteral("clean-2-scanning"));
  service->release();
  waitFor([&] { return cleaner.phase() == halcyra::clean::CleanViewModel::Phase::preview; });
  shot(QStringLiteral("clean-3-preview"));

  QMetaObject::invokeMethod(find("cleanPreview"), "openReview", Q_ARG(QVariant, QStringLiteral("User")));
  shot(QStringLiteral("clean-4-review"));
  find("cleanPreview")->setProperty("reviewSection", QString());

  cleaner.cleanAll();
  shot(QStringLiteral("clean-5-confirming"));

  service->holdNext();
  cleaner.confirmClean(service, state, logger);
  waitFor([&] { return !cleaner.scanStatus().isEmpty(); });
  shot(QStringLiteral("clean-6-executing"));
  service->release();
  waitFor([&] { return cleaner.phase() == halcyra::clean::CleanViewModel::Phase::summary; });
  shot(QStringLiteral("clean-7-summary"));

  service->failNextScan();
  cleaner.rescan(service, logger);
  waitFor([&] { return cleaner.phase() == halcyra::clean::CleanViewModel::Phase::error; });
  shot(QStringLiteral("clean-8-error"));
  cleaner.reset();
  shot(QStringLiteral("clean-1-idle"));

  halcyra::app::shootDiskAnalyzer(app, *diskAnalyzerService, shot, waitFor,
                                  [](const QString& problem) { problems.append(problem); });

  halcyra::app::shootDuplicates(app, *duplicateService,
                                {shot, find, waitFor, [](const QString& problem) { problems.append(problem); }});
  halcyra::app::shootShredder(app, *shredderService,
                              {shot, find, waitFor, [](const QString& problem) { problems.append(problem); }});
  halcyra::app::shootStartup(app, *startupService,
                             {shot, find, waitFor, [](const QString& problem) { problems.append(problem); }});

  const auto shotAtOnce = [&](const QString& name) {
    const QImage image = window->grabWindow();
    if (image.isNull() || !image.save(out.filePath(name + QStringLiteral(".png")))) {
      problems.append(QStringLiteral("could not write ") + name);
    } else {
      ++written;
    }
  };
  halcyra::app::shootDashboard(app, *systemCounters, *statistics,
                               {shot, find, waitFor, [](const QString& problem) { problems.append(problem); }},
                               shotAtOnce);

  // A tool that is not part of this build, settings, about and the notices.
  state.setSelectedNavItem(halcyra::app::NavigationItem::uninstaller);
  shot(QStringLiteral("placeholder"));
  state.setSelectedNavItem(halcyra::app::NavigationItem::settings);
  shot(QStringLiteral("settings"));
  window->setProperty("showAbout", true);
  shot(QStringLiteral("about"));
  find("aboutSheet")->setProperty("showLicenses", true);
  shot(QStringLiteral("licenses"));

  std::fprintf(stderr, "%d pictures in %s\n", written, qPrintable(out.path()));
  if (!problems.isEmpty()) {
    std::fprintf(stderr, "%lld warnings or errors:\n", static_cast<long long>(problems.size()));
    for (const auto& problem : problems) std::fprintf(stderr, "  %s\n", qPrintable(problem));
    return 1;
  }
  return 0;
}
