#include <gtest/gtest.h>

#include <sys/stat.h>

#include "StartupFixture.h"
#include "platform/ShellQuoting.h"
#include "platform/UserSession.h"

namespace halcyra::startup {
namespace {

using testing::StartupFixture;

/// Records every command and answers from a script: each tool path gives its output, or is
/// missing, or fails to start for its first `failFirst` calls.
class RecordingRunner final : public platform::ProcessRunner {
public:
  struct Call {
    std::string executable;
    std::vector<std::string> arguments;
  };
  std::vector<Call> calls;
  std::set<std::string> missing;
  std::map<std::string, int> failFirst;

  platform::ProcessOutput run(const std::string& executable, const std::vector<std::string>& arguments,
                              std::optional<std::chrono::milliseconds>) override {
    calls.push_back({executable, arguments});
    platform::ProcessOutput output;
    if (missing.contains(executable) || failFirst[executable]-- > 0) return output;
    output.launched = true;
    output.exitStatus = 5;
    output.standardError = "Boot-out failed: 5: Input/output error\n";
    return output;
  }
};

struct SwitchFixture : StartupFixture {
  std::shared_ptr<RecordingRunner> runner = std::make_shared<RecordingRunner>();
  StartupItemsService recordingService() const {
    platform::Platform p = platform();
    p.processes = runner;
    return StartupItemsService(p);
  }
  std::string gui() const { return "gui/" + platform::currentUserId(); }
};

TEST(LaunchdSwitch, UserJobRunsTheSwitchThenTheLoadWithoutAPrompt) {
  SwitchFixture fx;
  const std::string plist = fx.root + "/Library/LaunchAgents/com.acme.sync.plist";
  const std::string log = fx.recordingService().toggleLaunchAgent("com.acme.sync", plist, true);
  ASSERT_EQ(fx.runner->calls.size(), 2u);
  EXPECT_EQ(fx.runner->calls[0].executable, "/bin/launchctl");
  EXPECT_EQ(fx.runner->calls[0].arguments, (std::vector<std::string>{"enable", fx.gui() + "/com.acme.sync"}));
  EXPECT_EQ(fx.runner->calls[1].arguments, (std::vector<std::string>{"bootstrap", fx.gui(), plist}));
  EXPECT_EQ(log, "Toggle com.acme.sync: enable=true, domain=" + fx.gui() + ", plist=" + plist + "\n" +
                     "  launchctl enable " + fx.gui() + "/com.acme.sync \u2192 exit=5 output='Boot-out failed: 5: "
                     "Input/output error'\n  launchctl bootstrap \u2192 exit=5 output='Boot-out failed: 5: Input/output error'\n");

  fx.runner->calls.clear();
  fx.recordingService().toggleLaunchAgent("com.acme.sync", plist, false);
  EXPECT_EQ(fx.runner->calls[0].arguments[0], "disable");
  EXPECT_EQ(fx.runner->calls[1].arguments[0], "bootout");
}

TEST(LaunchdSwitch, SecondCommandRunsWhenTheFirstCannotStart) {
  SwitchFixture fx;
  fx.runner->failFirst["/bin/launchctl"] = 1;
  const auto report = fx.recordingService().switchJob("x", fx.home + "/Library/LaunchAgents/x.plist", false);
  EXPECT_EQ(fx.runner->calls.size(), 2u);
  EXPECT_FALSE(report.allStarted);
  EXPECT_NE(report.log.find("  launchctl disable failed: /bin/launchctl could not be started\n"), std::string::npos);
  EXPECT_NE(report.log.find("  launchctl bootout \u2192 exit=5"), std::string::npos);
}

TEST(LaunchdSwitch, SystemJobIsOnePromptCoveringBothCommands) {
  SwitchFixture fx;
  const std::string plist = fx.root + "/Library/LaunchDaemons/com.acme.d.plist";
  const std::string log = fx.recordingService().toggleLaunchAgent("com.acme.d", plist, false);
  ASSERT_EQ(fx.runner->calls.size(), 1u);
  EXPECT_EQ(fx.runner->calls[0].executable, "/usr/bin/osascript");
  EXPECT_EQ(fx.runner->calls[0].arguments,
            (std::vector<std::string>{"-e", "do shell script \"/bin/launchctl disable 'system/com.acme.d' 2>&1; "
                                            "/bin/launchctl bootout 'system' '" + plist + "' 2>&1\" with administrator privileges"}));
  EXPECT_NE(log.find("domain=system"), std::string::npos);
  EXPECT_NE(log.find("  admin launchctl disable + bootout \u2192 exit=5"), std::string::npos);

  fx.runner->missing.insert("/usr/bin/osascript");
  EXPECT_THROW(fx.recordingService().toggleLaunchAgent("com.acme.d", plist, true), std::runtime_error);
}

TEST(LoginItemSwitch, SystemEventsScriptsTakeTheValuesAsStringLiterals) {
  SwitchFixture fx;
  fx.recordingService().toggleLoginItem("Evil\" & (do shell script \"id\") & \"", "/Applications/A\\\"b.app", true);
  fx.recordingService().toggleLoginItem("Evil\" & (do shell script \"id\") & \"", "/Applications/A.app", false);
  ASSERT_EQ(fx.runner->calls.size(), 2u);
  EXPECT_EQ(fx.runner->calls[0].arguments[1], "tell application \"System Events\" to make login item at end with "
                                              "properties {path:\"/Applications/A\\\\\\\"b.app\", hidden:false}");
  EXPECT_EQ(fx.runner->calls[1].arguments[1], "tell application \"System Events\" to delete login item "
                                              "\"Evil\\\" & (do shell script \\\"id\\\") & \\\"\"");
  fx.runner->missing.insert("/usr/bin/osascript");
  EXPECT_THROW(fx.recordingService().toggleLoginItem("A", "/Applications/A.app", false), std::runtime_error);
}

TEST(AutostartSwitch, WritesOrRemovesTheUsersEntryAndNeverTheSystems) {
  SwitchFixture fx;
  const std::string captured = testing::readFile(StartupFixture::recording("at-spi-dbus-bus.desktop"));
  const std::string systemEntry = fx.file("/etc/xdg/autostart/at-spi-dbus-bus.desktop", captured);
  const std::string userEntry = fx.home + "/.config/autostart/at-spi-dbus-bus.desktop";
  auto service = fx.recordingService();

  service.toggleLoginItem("AT-SPI D-Bus Bus", systemEntry, false);
  EXPECT_EQ(testing::readFile(userEntry), captured + "Hidden=true\n");
  EXPECT_EQ(testing::readFile(systemEntry), captured);
  EXPECT_FALSE(service.scanLoginItems().front().isEnabled);

  // On again: the user's entry only switched the system's off, so it goes.
  service.toggleLoginItem("AT-SPI D-Bus Bus", userEntry, true);
  EXPECT_FALSE(testing::existsNoFollow(userEntry));
  EXPECT_TRUE(service.scanLoginItems().front().isEnabled);

  // A user's entry with changes of its own keeps them, switched.
  fx.file("~/.config/autostart/at-spi-dbus-bus.desktop", captured + "Exec=/home/me/bin/launcher\nHidden=true\n");
  fx.runner->calls.clear();
  service.toggleLoginItem("AT-SPI D-Bus Bus", userEntry, true);
  EXPECT_EQ(testing::readFile(userEntry), captured + "Exec=/home/me/bin/launcher\nHidden=false\n");
  EXPECT_TRUE(fx.runner->calls.empty());
  struct stat info {};
  ASSERT_EQ(::stat(userEntry.c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 0777, 0644u);
}

TEST(AutostartSwitch, SwitchesOnAnEntryTheSystemShipsOff) {
  SwitchFixture fx;
  const std::string systemEntry = fx.file("/etc/xdg/autostart/tool.desktop", "[Desktop Entry]\nName=Tool\nHidden=true\n");
  fx.recordingService().toggleLoginItem("Tool", systemEntry, true);
  EXPECT_EQ(testing::readFile(fx.home + "/.config/autostart/tool.desktop"), "[Desktop Entry]\nName=Tool\nHidden=false\n");
  EXPECT_THROW(fx.recordingService().toggleLoginItem("Gone", fx.root + "/etc/xdg/autostart/gone.desktop", true),
               std::runtime_error);
}

TEST(AutostartSwitch, APathOutsideTheAutostartFoldersIsNoEntry) {
  SwitchFixture fx;
  fx.file("/etc/xdg/autostart/tool.desktop", "[Desktop Entry]\nName=Tool\n");
  // Not an autostart entry of this machine: handed to System Events as a path, never written.
  fx.recordingService().toggleLoginItem("Tool", fx.root + "/etc/xdg/autostart/../autostart/tool.desktop", false);
  fx.recordingService().toggleLoginItem("Tool", fx.root + "/etc/xdg/tool.desktop", false);
  EXPECT_EQ(fx.runner->calls.size(), 2u);
  EXPECT_FALSE(testing::existsNoFollow(fx.home + "/.config/autostart"));
}

TEST(ServiceSwitch, UserServiceThroughSystemctlAndSystemServiceThroughOnePrompt) {
  SwitchFixture fx;
  const std::string userUnit = fx.file("~/.config/systemd/user/syncthing.service", "[Unit]\n");
  const std::string systemUnit = fx.file("/lib/systemd/system/ssh.service", "[Unit]\n");
  auto service = fx.recordingService();

  const std::string log = service.toggleLaunchAgent("syncthing.service", userUnit, false);
  ASSERT_EQ(fx.runner->calls.size(), 1u);
  EXPECT_EQ(fx.runner->calls[0].executable, "/usr/bin/systemctl");
  EXPECT_EQ(fx.runner->calls[0].arguments,
            (std::vector<std::string>{"--user", "disable", "--now", "--", "syncthing.service"}));
  EXPECT_EQ(log.substr(0, log.find('\n')), "Toggle syncthing.service: enable=false, domain=user, unit=" + userUnit);

  service.toggleLaunchAgent("ssh.service", systemUnit, true);
  ASSERT_EQ(fx.runner->calls.size(), 2u);
  EXPECT_EQ(fx.runner->calls[1].executable, "/usr/bin/pkexec");
  EXPECT_EQ(fx.runner->calls[1].arguments,
            (std::vector<std::string>{"/bin/sh", "-c", "/usr/bin/systemctl enable --now -- 'ssh.service' 2>&1"}));

  // Older systems keep systemctl in /bin only.
  fx.runner->missing.insert("/usr/bin/systemctl");
  EXPECT_TRUE(service.switchJob("syncthing.service", userUnit, true).allStarted);
  EXPECT_EQ(fx.runner->calls.back().executable, "/bin/systemctl");

  EXPECT_THROW(service.toggleLaunchAgent("../x.service", userUnit, true), std::invalid_argument);
  EXPECT_THROW(service.toggleLaunchAgent("x.service", "/somewhere/else/x.service", true), std::invalid_argument);
  fx.runner->missing.insert("/usr/bin/pkexec");
  EXPECT_THROW(service.toggleLaunchAgent("ssh.service", systemUnit, false), std::runtime_error);
}

} // namespace
} // namespace halcyra::startup
