#pragma once

#include <functional>
#include <string>
#include <vector>

#include "startup/StartupItem.h"

namespace halcyra::startup {

/// The startup tool's engine as its front ends drive it, so a test or a rendering can put a
/// scripted one in its place. Every call blocks until its commands have finished: front ends
/// run them on worker threads.
class StartupItemsServiceProtocol {
public:
  /// A status text ("Checking <file>…"), from the worker thread; must return at once.
  using ProgressCallback = std::function<void(const std::string&)>;

  virtual ~StartupItemsServiceProtocol() = default;

  /// The login items, in the order the system gives them. Never fails: what cannot be read
  /// gives no items.
  virtual std::vector<StartupItem> scanLoginItems() = 0;
  /// The jobs, each with its enabled state, sorted by name. Never fails.
  virtual std::vector<StartupItem> scanLaunchAgents(const ProgressCallback& onProgress) = 0;
  /// Adds or removes a login item. Throws when the command cannot be started or the switch
  /// cannot be written; a command that ran and failed is no error.
  virtual void toggleLoginItem(const std::string& name, const std::string& path, bool enable) = 0;
  /// Switches a job persistently and loads or unloads it; returns the log text of the
  /// commands. Throws only when a privileged command cannot be started.
  virtual std::string toggleLaunchAgent(const std::string& label, const std::string& plistPath, bool enable) = 0;
};

} // namespace halcyra::startup
