#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>

#include "DuplicatesShots.h" // ShotTools, what the picture run lends each tool
#include "app/HalcyraApp.h"
#include "startup/StartupItemsServiceProtocol.h"

namespace halcyra::app {

/// A scripted engine for the startup items' pictures: fixed lists, a scan or a switch that
/// can be held in the middle, and a scan that fails.
class ScriptedStartupService final : public startup::StartupItemsServiceProtocol {
public:
  std::vector<startup::StartupItem> logins;
  std::vector<startup::StartupItem> agents;

  void holdNext();
  void release();
  void failNextScan();
  bool isHolding();

  std::vector<startup::StartupItem> scanLoginItems() override;
  std::vector<startup::StartupItem> scanLaunchAgents(const ProgressCallback& onProgress) override;
  void toggleLoginItem(const std::string& name, const std::string& path, bool enable) override;
  std::string toggleLaunchAgent(const std::string& label, const std::string& plistPath, bool enable) override;

private:
  void pass();

  std::mutex mutex_;
  std::condition_variable released_;
  bool hold_ = false;
  bool holding_ = false;
  bool fail_ = false;
};

std::shared_ptr<ScriptedStartupService> scriptedStartup();

/// Drives the startup items through every phase and draws each: idle, scanning, both lists
/// (one switch running), an empty list, error.
void shootStartup(HalcyraApp& app, ScriptedStartupService& service, const ShotTools& tools);

} // namespace halcyra::app
