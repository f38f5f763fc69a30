#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/Platform.h"
#include "platform/ProcessRunner.h"
#include "startup/StartupItemsService.h"
#include "support/TempDir.h"

namespace halcyra::testing {

/// A fake machine for the startup tool: a home and a system root in a temporary folder, and
/// every tool the service may run standing at its fixed path as a fake, or missing.
struct StartupFixture {
  TempDir tmp;
  std::string home = tmp.mkdir("home");
  std::string root = tmp.mkdir("root");
  std::map<std::string, std::string> tools{
      {"/usr/bin/osascript", tmp / "missing"}, {"/bin/launchctl", tmp / "missing"},
      {"/usr/bin/sfltool", tmp / "missing"},   {"/usr/bin/systemctl", tmp / "missing"},
      {"/bin/systemctl", tmp / "missing"},     {"/usr/bin/pkexec", tmp / "missing"}};

  static std::string recording(const std::string& name) {
    return std::string(HALCYRA_STARTUP_RECORDINGS) + "/" + name;
  }

  /// A fake for the tool at `fixedPath`: notes its arguments, one per line after a line with
  /// its name, in calls(), then runs `body`.
  void fakeTool(const std::string& fixedPath, const std::string& body) {
    const std::string name = fixedPath.substr(fixedPath.find_last_of('/') + 1);
    tools[fixedPath] = tmp.script("tools/" + name + std::to_string(tools.size()),
                                  "#!/bin/sh\n{ echo '>" + name + "'; for a in \"$@\"; do echo \"$a\"; done; } >> '" +
                                      (tmp / "calls") + "'\n" + body + "\n");
  }
  /// A fake that prints a recording.
  void fakeToolPrinting(const std::string& fixedPath, const std::string& recordingName) {
    fakeTool(fixedPath, "cat '" + recording(recordingName) + "'");
  }

  std::string calls() const { return readFile(tmp / "calls"); }

  platform::Platform platform() const {
    platform::Platform result;
    result.paths = platform::SystemPaths(home, root);
    result.processes = std::make_shared<platform::SystemProcessRunner>(tools);
    return result;
  }
  startup::StartupItemsService service() const { return startup::StartupItemsService(platform()); }

  /// A launchd property list at `folder` (below the root, or "~/..." below the home).
  std::string plist(const std::string& folder, const std::string& fileName, const std::string& label,
                    const std::string& extraKeys = {}) const {
    const std::string text =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" \"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
        "<plist version=\"1.0\">\n<dict>\n  <key>Label</key>\n  <string>" +
        label + "</string>\n" + extraKeys + "</dict>\n</plist>\n";
    return tmp.file(relative(folder) + "/" + fileName, text);
  }
  static std::string program(const std::string& path) { return "  <key>Program</key>\n  <string>" + path + "</string>\n"; }
  static std::string programArguments(const std::vector<std::string>& arguments) {
    std::string keys = "  <key>ProgramArguments</key>\n  <array>\n";
    for (const auto& argument : arguments) keys += "    <string>" + argument + "</string>\n";
    return keys + "  </array>\n";
  }

  /// A file below the root ("/x") or the home ("~/x").
  std::string file(const std::string& path, const std::string& content) const { return tmp.file(relative(path), content); }

private:
  std::string relative(const std::string& path) const {
    if (path.starts_with("~/")) return "home/" + path.substr(2);
    return "root" + path;
  }
};

} // namespace halcyra::testing
