#pragma once

#include <memory>
#include <optional>

#include <QObject>
#include <QSettings>

#include "analyzer/viewmodel/DiskAnalyzerServiceProtocol.h"
#include "analyzer/viewmodel/DiskAnalyzerViewModel.h"
#include "app/AppInfo.h"
#include "app/AppState.h"
#include "app/DebugLogger.h"
#include "app/NavigationModel.h"
#include "app/ServiceHandle.h"
#include "clean/CleanServiceProtocol.h"
#include "clean/viewmodel/CleanViewModel.h"
#include "dashboard/SystemMetricsProvider.h"
#include "dashboard/viewmodel/DashboardViewModel.h"
#include "duplicates/viewmodel/DuplicateServiceProtocol.h"
#include "duplicates/viewmodel/DuplicatesViewModel.h"
#include "shredder/viewmodel/ShredderServiceProtocol.h"
#include "shredder/viewmodel/ShredderViewModel.h"
#include "startup/StartupItemsServiceProtocol.h"
#include "startup/viewmodel/StartupItemsViewModel.h"

class QQmlEngine;

namespace halcyra::app {

/// The composition root: creates the shared state, every service and every tool's view model
/// once, in a fixed order, and keeps them for the life of the window. Nothing scans here.
///
/// Screens reach each object under its type name from the QML import "Halcyra.Env"
/// (`AppState`, `CleanViewModel`, `NativeCleanService`, `DebugLogger`, ...), and pass the ones an
/// operation needs as its arguments: `CleanViewModel.scan(NativeCleanService, DebugLogger)`.
class HalcyraApp : public QObject {
  Q_OBJECT

public:
  /// What differs between the real program and a rendering of it: where the two persisted
  /// values live, which engine the cleaner drives, and whether the system knows Full Disk
  /// Access. Empty fields take the real ones.
  struct Options {
    std::unique_ptr<QSettings> defaults;
    std::shared_ptr<clean::CleanServiceProtocol> cleanService;
    std::optional<bool> hasAccessPermission;
    std::shared_ptr<duplicates::DuplicateServiceProtocol> duplicateService;
    std::shared_ptr<analyzer::DiskAnalyzerServiceProtocol> diskAnalyzerService;
    std::shared_ptr<shredder::ShredderServiceProtocol> shredderService;
    /// The machine the dashboard reads, and where finished cleans are reported.
    std::shared_ptr<platform::SystemCounters> systemCounters;
    std::shared_ptr<statistics::StatisticsReporter> statistics;
    std::shared_ptr<startup::StartupItemsServiceProtocol> startupItemsService;
  };

  explicit HalcyraApp(Options options = {}, QObject* parent = nullptr);
  ~HalcyraApp() override;

  /// Hands every shared object and the symbol images to `engine`. Once per process: the type
  /// names are registered for all engines.
  void exposeTo(QQmlEngine& engine);

  AppState& appState() { return *appState_; }
  clean::CleanViewModel& cleanViewModel() { return *cleanViewModel_; }
  duplicates::DuplicatesViewModel& duplicatesViewModel() { return *duplicatesViewModel_; }
  shredder::ShredderViewModel& shredderViewModel() { return *shredderViewModel_; }
  DebugLogger& debugLogger() { return *debugLogger_; }
  analyzer::DiskAnalyzerViewModel& diskAnalyzerViewModel() { return *diskAnalyzerViewModel_; }
  startup::StartupItemsViewModel& startupItemsViewModel() { return *startupItemsViewModel_; }

  /// Where the QML module's files lie among the resources.
  static constexpr const char* kQmlRoot = ":/Halcyra/";

private:
  // In order of creation.
  AppState* appState_;
  std::shared_ptr<clean::CleanServiceProtocol> cleanService_;
  clean::CleanViewModel* cleanViewModel_;
  std::shared_ptr<duplicates::DuplicateServiceProtocol> duplicateService_;
  duplicates::DuplicatesViewModel* duplicatesViewModel_;
  std::shared_ptr<shredder::ShredderServiceProtocol> shredderService_;
  shredder::ShredderViewModel* shredderViewModel_;
  DebugLogger* debugLogger_;
  std::shared_ptr<analyzer::DiskAnalyzerServiceProtocol> diskAnalyzerService_;
  analyzer::DiskAnalyzerViewModel* diskAnalyzerViewModel_;
  std::shared_ptr<startup::StartupItemsServiceProtocol> startupItemsService_;
  startup::StartupItemsViewModel* startupItemsViewModel_;
  ServiceHandle* cleanServiceHandle_;
  ServiceHandle* duplicateServiceHandle_;
  ServiceHandle* diskAnalyzerServiceHandle_;
  ServiceHandle* shredderServiceHandle_;
  // The dashboard's readings keep their previous samples for the life of the program, so a
  // dashboard that appears again measures from its last reading.
  std::shared_ptr<dashboard::SystemMetricsProvider> metricsProvider_;
  std::shared_ptr<statistics::StatisticsReporter> statistics_;
  ServiceHandle* metricsProviderHandle_;
  ServiceHandle* statisticsHandle_;
  ServiceHandle* startupItemsServiceHandle_;
  NavigationModel* navigation_;
  AppInfo* appInfo_;
};

} // namespace halcyra::app
