#pragma once

#include <functional>

#include <QObject>
#include <QString>

#include "ScriptedDuplicateService.h"
#include "app/HalcyraApp.h"

namespace halcyra::app {

/// What the picture run lends a tool's sequence of pictures.
struct ShotTools {
  std::function<void(const QString& name)> shot;            ///< draw the window into name.png
  std::function<QObject*(const char* objectName)> find;     ///< an object of the window by name
  std::function<bool(const std::function<bool()>&)> waitFor; ///< run events until true; false on timeout
  std::function<void(const QString& problem)> fail;          ///< note a problem, failing the run
};

/// A scripted engine for the duplicate finder's pictures, with the delete run's result set.
std::shared_ptr<ScriptedDuplicateService> scriptedDuplicates();

/// Drives the duplicate finder through every phase and draws each: idle, nothing found,
/// scanning, result, search, the strategy menu, confirmation, deleting, summary, error.
void shootDuplicates(HalcyraApp& app, ScriptedDuplicateService& service, const ShotTools& tools);

} // namespace halcyra::app
