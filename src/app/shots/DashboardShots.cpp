#include "DashboardShots.h"

#include <stdexcept>

#include <QCoreApplication>
#include <QEvent>
#include <QPointer>

#include "dashboard/viewmodel/DashboardViewModel.h"

namespace halcyra::app {

std::optional<platform::ProcessorTicks> ScriptedSystemCounters::readProcessorTicks() {
  if (broken) throw std::runtime_error("The sensors could not be read.");
  ticks_.user += busyStep;
  ticks_.idle += idleStep;
  return ticks_;
}

platform::NetworkCounters ScriptedSystemCounters::readNetworkCounters() {
  network_.sent += sendStep;
  network_.received += receiveStep;
  network_.uptimeSeconds += 1;
  return network_;
}

namespace {

/// The view model of the dashboard on screen. A screen that went is deleted later, and outside
/// an event loop of its own that never comes, so its objects would still be found.
dashboard::DashboardViewModel* viewModel(const ShotTools& tools) {
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  return qobject_cast<dashboard::DashboardViewModel*>(tools.find("dashboardViewModel"));
}

/// One more reading through the "Refresh" command, as the menu gives it.
void refresh(HalcyraApp& app, const ShotTools& tools, const char* what) {
  auto* model = viewModel(tools);
  const int before = app.debugLogger().count();
  app.appState().toggleRefresh();
  if (model == nullptr || !tools.waitFor([&] { return app.debugLogger().count() > before || !model->errorText().isEmpty(); })) {
    tools.fail(QStringLiteral("dashboard: no reading for ") + QLatin1String(what));
  }
}

/// Leaves the dashboard and comes back: a new view model, a reading at once, and the lifetime
/// figures asked for again.
void reappear(HalcyraApp& app, const ShotTools& tools) {
  QPointer<QObject> old = viewModel(tools);
  app.appState().setSelectedNavItem(NavigationItem::settings);
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  if (!old.isNull()) tools.fail(QStringLiteral("dashboard: its view model outlived it"));
  app.appState().setSelectedNavItem(NavigationItem::dashboard);
  auto* model = viewModel(tools);
  if (model == nullptr || !tools.waitFor([&] { return model->hasStatus(); })) {
    tools.fail(QStringLiteral("dashboard: no reading after coming back"));
  }
}

} // namespace

void shootDashboard(HalcyraApp& app, ScriptedSystemCounters& counters, ScriptedStatistics& statistics,
                    const ShotTools& tools, const std::function<void(const QString&)>& shotAtOnce) {
  statistics.answer = statistics::LifetimeStatsResponse{27, 148'300'000'000, 61'904, std::nullopt};

  // The first reading comes as a call of its own, so the screen is drawn before it once.
  app.appState().setSelectedNavItem(NavigationItem::dashboard);
  shotAtOnce(QStringLiteral("dashboard-1-loading"));
  auto* model = viewModel(tools);
  if (model == nullptr || !tools.waitFor([&] { return model->hasStatus(); })) {
    tools.fail(QStringLiteral("dashboard: the first reading did not come"));
    return;
  }
  // The second reading has rates and a processor load to show.
  refresh(app, tools, "the good band");
  tools.waitFor([&] { return model->lifetimeStats().has_value(); });
  if (model->status()->healthScore <= 70 || !model->showsLifetimeStats()) {
    tools.fail(QStringLiteral("dashboard: expected a good score with the lifetime card"));
  }
  tools.shot(QStringLiteral("dashboard-2-good"));

  // Memory and disk fuller, on the charger.
  counters.memory.used = counters.memory.total / 100 * 78;
  counters.volume.available = counters.volume.total / 100 * 18;
  counters.battery = {34, true, 125, 95};
  refresh(app, tools, "the fair band");
  tools.shot(QStringLiteral("dashboard-3-fair-charging"));

  // Everything loaded, the battery low and running down.
  counters.busyStep = 91;
  counters.idleStep = 9;
  counters.memory.used = counters.memory.total / 100 * 93;
  counters.volume.available = counters.volume.total / 100 * 4;
  counters.battery = {12, false, 38, -1};
  counters.receiveStep = 12'800'000;
  refresh(app, tools, "the poor band");
  tools.shot(QStringLiteral("dashboard-4-poor-discharging"));

  // A desktop: no battery, no sensor; no clean counted yet, so no lifetime card.
  counters.busyStep = 12;
  counters.idleStep = 88;
  counters.memory.used = counters.memory.total / 100 * 41;
  counters.volume.available = counters.volume.total / 100 * 55;
  counters.battery = {};
  counters.temperature.reset();
  counters.receiveStep = 800;
  statistics.answer = statistics::LifetimeStatsResponse{0, 0, 0, std::nullopt};
  reappear(app, tools);
  refresh(app, tools, "the desktop");
  model = viewModel(tools);
  if (model != nullptr) tools.waitFor([&] { return model->lifetimeStats().has_value(); });
  if (model == nullptr || model->showsLifetimeStats()) tools.fail(QStringLiteral("dashboard: lifetime card without a clean"));
  tools.shot(QStringLiteral("dashboard-5-desktop-no-lifetime"));

  // A reading that fails shows the banner above the last snapshot.
  counters.broken = true;
  refresh(app, tools, "the error");
  tools.shot(QStringLiteral("dashboard-6-error"));
  counters.broken = false;
}

} // namespace halcyra::app
