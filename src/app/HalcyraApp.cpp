#include "app/HalcyraApp.h"

#include <QCoreApplication>
#include <QQmlEngine>

#include "app/SettingsViewModel.h"
#include "app/SymbolImageProvider.h"
#include "clean/NativeCleanService.h"
#include "duplicates/viewmodel/NativeDuplicateService.h"
#include "platform/FullDiskAccessChecker.h"
#include "platform/Platform.h"
#include "shredder/viewmodel/NativeShredderService.h"
#include "startup/StartupItemsService.h"

namespace halcyra::app {
namespace {

bool systemHasAccessPermission() {
#if defined(Q_OS_MACOS)
  return true;
#else
  // Only macOS guards folders behind Full Disk Access; elsewhere nobody could grant it, so the
  // preview does not ask for it even though the probe reads "denied".
  return false;
#endif
}

} // namespace

HalcyraApp::HalcyraApp(Options options, QObject* parent)
    : QObject(parent), appState_(new AppState(std::move(options.defaults), this)),
      cleanService_(options.cleanService
                        ? std::move(options.cleanService)
                        : std::make_shared<clean::NativeCleanService>(platform::Platform::forSystem())),
      cleanViewModel_(new clean::CleanViewModel(platform::FullDiskAccessChecker(platform::SystemPaths::current()),
                                                options.hasAccessPermission.value_or(systemHasAccessPermission()),
                                                this)),
      duplicateService_(options.duplicateService
                            ? std::move(options.duplicateService)
                            : std::make_shared<duplicates::NativeDuplicateService>(platform::Platform::forSystem())),
      duplicatesViewModel_(new duplicates::DuplicatesViewModel(platform::SystemPaths::current(), this)),
      shredderService_(options.shredderService
                           ? std::move(options.shredderService)
                           : std::make_shared<shredder::NativeShredderService>(platform::Platform::forSystem())),
      shredderViewModel_(new shredder::ShredderViewModel(this)),
      debugLogger_(new DebugLogger(this)),
      diskAnalyzerService_(options.diskAnalyzerService ? std::move(options.diskAnalyzerService)
                                                       : std::make_shared<analyzer::NativeDiskAnalyzerService>()),
      diskAnalyzerViewModel_(new analyzer::DiskAnalyzerViewModel(
          platform::Platform::forSystem().workspace, QString::fromStdString(platform::SystemPaths::current().home()),
          this)),
      startupItemsService_(options.startupItemsService
                               ? std::move(options.startupItemsService)
                               : std::make_shared<startup::StartupItemsService>(platform::Platform::forSystem())),
      startupItemsViewModel_(new startup::StartupItemsViewModel(this)),
      cleanServiceHandle_(ServiceHandle::wrap<clean::CleanServiceProtocol>(cleanService_, this)),
      duplicateServiceHandle_(ServiceHandle::wrap<duplicates::DuplicateServiceProtocol>(duplicateService_, this)),
      diskAnalyzerServiceHandle_(ServiceHandle::wrap<analyzer::DiskAnalyzerServiceProtocol>(diskAnalyzerService_, this)),
      shredderServiceHandle_(ServiceHandle::wrap<shredder::ShredderServiceProtocol>(shredderService_, this)),
      metricsProvider_(std::make_shared<dashboard::SystemMetricsProvider>(
          options.systemCounters ? std::move(options.systemCounters)
                                 : std::make_shared<platform::NativeSystemCounters>())),
      statistics_(options.statistics ? std::move(options.statistics)
                                     : std::make_shared<statistics::StatisticsReporter>(
                                           statistics::StatisticsConfig::fromBuild())),
      metricsProviderHandle_(ServiceHandle::wrap<dashboard::SystemMetricsProvider>(metricsProvider_, this)),
      statisticsHandle_(ServiceHandle::wrap<statistics::StatisticsReporter>(statistics_, this)),
      startupItemsServiceHandle_(
          ServiceHandle::wrap<startup::StartupItemsServiceProtocol>(startupItemsService_, this)),
      navigation_(new NavigationModel(QString::fromLatin1(kQmlRoot), this)),
      appInfo_(new AppInfo(QCoreApplication::applicationVersion(), this)) {
  // A finished clean's figures go to the statistics service on a thread of their own; the
  // summary never waits for it, and a build without a key sends nothing.
  cleanViewModel_->setCleanReporter([statistics = statistics_](const clean::CleanResult& result) {
    statistics->reportClean(result.itemsCleaned, result.freedBytes);
  });
}

HalcyraApp::~HalcyraApp() = default;

void HalcyraApp::exposeTo(QQmlEngine& engine) {
  constexpr const char* uri = "Halcyra.Env";
  qmlRegisterSingletonInstance(uri, 1, 0, "AppState", appState_);
  qmlRegisterSingletonInstance(uri, 1, 0, "NativeCleanService", cleanServiceHandle_);
  qmlRegisterSingletonInstance(uri, 1, 0, "CleanViewModel", cleanViewModel_);
  qmlRegisterSingletonInstance(uri, 1, 0, "DiskAnalyzerService", diskAnalyzerServiceHandle_);
  qmlRegisterSingletonInstance(uri, 1, 0, "DiskAnalyzerViewModel", diskAnalyzerViewModel_);
  qmlRegisterUncreatableType<analyzer::DirectoryRowsModel>(uri, 1, 0, "DirectoryRowsModel",
                                                           QStringLiteral("owned by DiskAnalyzerViewModel"));
  qmlRegisterSingletonInstance(uri, 1, 0, "DuplicateFileService", duplicateServiceHandle_);
  qmlRegisterSingletonInstance(uri, 1, 0, "DuplicatesViewModel", duplicatesViewModel_);
  qmlRegisterUncreatableType<duplicates::DuplicateGroupsModel>(uri, 1, 0, "DuplicateGroupsModel",
                                                               QStringLiteral("owned by DuplicatesViewModel"));
  qmlRegisterUncreatableType<duplicates::DuplicateFilesModel>(uri, 1, 0, "DuplicateFilesModel",
                                                              QStringLiteral("owned by DuplicatesViewModel"));
  qmlRegisterSingletonInstance(uri, 1, 0, "ShredderService", shredderServiceHandle_);
  qmlRegisterSingletonInstance(uri, 1, 0, "ShredderViewModel", shredderViewModel_);
  qmlRegisterUncreatableType<shredder::ShredderFilesModel>(uri, 1, 0, "ShredderFilesModel",
                                                           QStringLiteral("owned by ShredderViewModel"));
  qmlRegisterSingletonInstance(uri, 1, 0, "StartupItemsService", startupItemsServiceHandle_);
  qmlRegisterSingletonInstance(uri, 1, 0, "StartupItemsViewModel", startupItemsViewModel_);
  qmlRegisterUncreatableType<startup::StartupItemsModel>(uri, 1, 0, "StartupItemsModel",
                                                         QStringLiteral("owned by StartupItemsViewModel"));
  qmlRegisterSingletonInstance(uri, 1, 0, "SystemMetricsProvider", metricsProviderHandle_);
  qmlRegisterSingletonInstance(uri, 1, 0, "Statistics", statisticsHandle_);
  qmlRegisterType<dashboard::DashboardViewModel>(uri, 1, 0, "DashboardViewModel");
  qmlRegisterSingletonInstance(uri, 1, 0, "DebugLogger", debugLogger_);
  qmlRegisterSingletonInstance(uri, 1, 0, "Navigation", navigation_);
  qmlRegisterSingletonInstance(uri, 1, 0, "AppInfo", appInfo_);
  qmlRegisterType<SettingsViewModel>(uri, 1, 0, "SettingsViewModel");
  qmlRegisterUncreatableType<clean::CleanItemsModel>(uri, 1, 0, "CleanItemsModel", QStringLiteral("owned by CleanViewModel"));
  engine.addImageProvider(QStringLiteral("symbol"), new SymbolImageProvider);
}

} // namespace halcyra::app
