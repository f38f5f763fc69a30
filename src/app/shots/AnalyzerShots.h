#pragma once

#include <functional>
#include <memory>

#include <QString>

#include "ScriptedDiskAnalyzerService.h"
#include "app/HalcyraApp.h"

namespace halcyra::app {

/// A scripted walk for the disk analyzer's pictures, holding the tree of a home folder.
std::shared_ptr<ScriptedDiskAnalyzerService> scriptedDiskAnalyzer();

/// Drives the disk analyzer through every phase and draws each with `shot`: idle, scanning, the
/// treemap at the root, marked rows, one level down, the largest files, confirmation, error.
/// `waitFor` runs events until its condition holds (false on timeout); `fail` notes a problem.
void shootDiskAnalyzer(HalcyraApp& app, ScriptedDiskAnalyzerService& service,
                       const std::function<void(const QString& name)>& shot,
                       const std::function<bool(const std::function<bool()>&)>& waitFor,
                       const std::function<void(const QString& problem)>& fail);

} // namespace halcyra::app
