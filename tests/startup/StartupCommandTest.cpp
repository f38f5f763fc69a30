#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "StartupFixture.h"
#include "support/RunHalcyra.h"

namespace halcyra::startup {
namespace {

using ::testing::HasSubstr;
using testing::runHalcyra;
using testing::StartupFixture;

// A home and a root with an autostart entry the user switched off, one the system ships, and
// launchd jobs; the running system's tools are not asked when a root is given.
struct CommandMachine : StartupFixture {
  CommandMachine() {
    file("/etc/xdg/autostart/at-spi-dbus-bus.desktop", testing::readFile(recording("at-spi-dbus-bus.desktop")));
    file("/etc/xdg/autostart/xdg-user-dirs.desktop", testing::readFile(recording("xdg-user-dirs.desktop")));
    file("~/.config/autostart/xdg-user-dirs.desktop", "[Desktop Entry]\nName=User folders update\nHidden=true\n");
    plist("~/Library/LaunchAgents", "sync.plist", "com.acme.sync",
          program("/Applications/Acme Sync.app/Contents/MacOS/sync"));
    plist("/Library/LaunchDaemons", "helper.plist", "com.acme.helper");
    file("/Applications/Acme Sync.app/Contents/Info.plist",
         "<plist><dict><key>CFBundleIdentifier</key><string>com.acme.sync.app</string></dict></plist>");
  }
  std::vector<std::string> args(std::vector<std::string> first) const {
    first.insert(first.end(), {"--home", home, "--root", root});
    return first;
  }
};

TEST(StartupCommand, JsonListsBothCategoriesWithTheRecordsFields) {
  CommandMachine fx;
  const auto run = runHalcyra(fx.args({"startup", "--json"}));
  ASSERT_EQ(run.exitStatus, 0) << run.standardError;
  const auto json = nlohmann::json::parse(run.standardOutput);
  ASSERT_EQ(json.at("loginItems").size(), 2u);
  const auto& userDirs = json["loginItems"][1];
  EXPECT_EQ(userDirs.at("id"), "login-" + fx.home + "/.config/autostart/xdg-user-dirs.desktop");
  EXPECT_EQ(userDirs.at("isEnabled"), false);
  EXPECT_EQ(userDirs.at("category"), "loginItems");
  EXPECT_TRUE(userDirs.at("plistPath").is_null());
  EXPECT_TRUE(userDirs.at("label").is_null());

  ASSERT_EQ(json.at("launchAgents").size(), 2u);
  const auto& sync = json["launchAgents"][0];
  const nlohmann::json expected{{"id", "agent-com.acme.sync"},
                                {"name", "Acme Sync Agent"},
                                {"path", "/Applications/Acme Sync.app"},
                                {"category", "launchAgents"},
                                {"isEnabled", true},
                                {"bundleIdentifier", "com.acme.sync.app"},
                                {"plistPath", fx.home + "/Library/LaunchAgents/sync.plist"},
                                {"label", "com.acme.sync"}};
  EXPECT_EQ(sync, expected);
  EXPECT_EQ(json["launchAgents"][1].at("name"), "Helper Service");
}

TEST(StartupCommand, ReadableListShowsStateNameLabelAndPath) {
  CommandMachine fx;
  const auto run = runHalcyra(fx.args({"startup"}));
  ASSERT_EQ(run.exitStatus, 0) << run.standardError;
  EXPECT_THAT(run.standardOutput, HasSubstr("User Login Items (2)\n"));
  EXPECT_THAT(run.standardOutput, HasSubstr("  Disabled  User folders update  " + fx.home));
  EXPECT_THAT(run.standardOutput, HasSubstr("  Enabled   Acme Sync Agent  com.acme.sync  /Applications/Acme Sync.app\n"));
  EXPECT_THAT(run.standardOutput, HasSubstr("3 Items Enabled, 4 Items Total\n"));
}

TEST(StartupCommand, SwitchesAnAutostartEntryByIdInTheUsersFolder) {
  CommandMachine fx;
  const std::string systemEntry = fx.root + "/etc/xdg/autostart/at-spi-dbus-bus.desktop";
  const auto off = runHalcyra(fx.args({"startup", "disable", "login-" + systemEntry}));
  ASSERT_EQ(off.exitStatus, 0) << off.standardError;
  EXPECT_EQ(off.standardOutput, "Login item 'AT-SPI D-Bus Bus' disabled\n");
  EXPECT_THAT(testing::readFile(fx.home + "/.config/autostart/at-spi-dbus-bus.desktop"), HasSubstr("Hidden=true\n"));
  EXPECT_EQ(testing::readFile(systemEntry), testing::readFile(StartupFixture::recording("at-spi-dbus-bus.desktop")));

  const auto on = runHalcyra(fx.args({"startup", "enable", "login-" + fx.home + "/.config/autostart/at-spi-dbus-bus.desktop"}));
  ASSERT_EQ(on.exitStatus, 0) << on.standardError;
  EXPECT_FALSE(testing::existsNoFollow(fx.home + "/.config/autostart/at-spi-dbus-bus.desktop"));
}

TEST(StartupCommand, UnknownItemsMissingToolsAndBadUsage) {
  CommandMachine fx;
  const auto unknown = runHalcyra(fx.args({"startup", "disable", "agent-com.nobody"}));
  EXPECT_EQ(unknown.exitStatus, 1);
  EXPECT_THAT(unknown.standardError, HasSubstr("no startup item has the id or label agent-com.nobody"));

  // Found by its label, but launchctl cannot be started here: the log says so, and the exit status.
  const auto job = runHalcyra(fx.args({"startup", "disable", "com.acme.sync"}));
  EXPECT_EQ(job.exitStatus, 1);
  EXPECT_THAT(job.standardOutput, HasSubstr("Toggle com.acme.sync: enable=false"));
  EXPECT_THAT(job.standardOutput, HasSubstr("  launchctl bootout failed: /bin/launchctl could not be started\n"));

  EXPECT_EQ(runHalcyra(fx.args({"startup", "toggle", "x"})).exitStatus, 2);
  EXPECT_EQ(runHalcyra(fx.args({"startup", "enable"})).exitStatus, 2);
}

} // namespace
} // namespace halcyra::startup
