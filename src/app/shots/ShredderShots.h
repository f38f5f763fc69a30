#pragma once

#include <memory>

#include "DuplicatesShots.h" // ShotTools, what the picture run lends each tool
#include "ScriptedShredderService.h"
#include "app/HalcyraApp.h"

namespace halcyra::app {

/// A scripted engine for the shredder's pictures: the files a pick resolves to, the progress
/// a run shows and the result it ends with.
std::shared_ptr<ScriptedShredderService> scriptedShredder();

/// Drives the shredder through every phase and draws each: idle, a drag over the drop zone,
/// the file list, confirmation, shredding, summary, error.
void shootShredder(HalcyraApp& app, ScriptedShredderService& service, const ShotTools& tools);

} // namespace halcyra::app
