#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include "StartupFixture.h"

namespace halcyra::startup {
namespace {

using testing::StartupFixture;

const StartupItem* find(const std::vector<StartupItem>& items, const std::string& id) {
  for (const auto& item : items) {
    if (item.id == id) return &item;
  }
  return nullptr;
}

std::string infoPlist(const std::string& identifier) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict><key>CFBundleIdentifier</key>"
         "<string>" + identifier + "</string></dict></plist>\n";
}

TEST(LoginItemScan, SystemEventsItemsInTheirOrderWithBundleAndIcon) {
  StartupFixture fx;
  fx.file("/Applications/Docker.app/Contents/Info.plist", infoPlist("com.docker.docker"));
  fx.fakeTool("/usr/bin/osascript", "printf 'Docker\\t/Applications/Docker.app\\nGitHub Desktop\\t/Applications/GitHub "
                                    "Desktop.app\\n'");
  const auto items = fx.service().scanLoginItems();
  ASSERT_EQ(items.size(), 2u);
  EXPECT_EQ(items[0].id, "login-/Applications/Docker.app");
  EXPECT_EQ(items[0].name, "Docker");
  EXPECT_EQ(items[0].bundleIdentifier, "com.docker.docker");
  EXPECT_EQ(items[0].icon, fx.root + "/Applications/Docker.app");
  EXPECT_TRUE(items[0].isEnabled);
  EXPECT_FALSE(items[0].plistPath);
  EXPECT_EQ(items[1].name, "GitHub Desktop");
  EXPECT_FALSE(items[1].bundleIdentifier);
  EXPECT_FALSE(items[1].icon);
  // The script is the nine-line one, with a real tab and line feed inside its quotes.
  EXPECT_NE(fx.calls().find("& \"\t\" & item i of itemPaths & \"\n\"\n"), std::string::npos);
}

TEST(LoginItemScan, AnErrorOrAMissingToolGivesNoItems) {
  StartupFixture fx;
  EXPECT_TRUE(fx.service().scanLoginItems().empty());
  fx.fakeTool("/usr/bin/osascript", "cat '" + StartupFixture::recording("osascript-errors.txt") + "' >&2; exit 1");
  EXPECT_TRUE(fx.service().scanLoginItems().empty());
}

TEST(LoginItemScan, AutostartEntriesOfTheUserOverrideTheSystemsByFileName) {
  StartupFixture fx;
  fx.file("/etc/xdg/autostart/at-spi-dbus-bus.desktop", testing::readFile(StartupFixture::recording("at-spi-dbus-bus.desktop")));
  fx.file("/etc/xdg/autostart/xdg-user-dirs.desktop", testing::readFile(StartupFixture::recording("xdg-user-dirs.desktop")));
  fx.file("~/.config/autostart/xdg-user-dirs.desktop", "[Desktop Entry]\nName=User folders update\nHidden=true\n");
  fx.file("~/.config/autostart/sync.desktop", "[Desktop Entry]\nName=\nIcon=sync\nX-GNOME-Autostart-enabled=false\n");
  fx.file("~/.config/autostart/notes.txt", "[Desktop Entry]\n");
  fx.file("~/.config/autostart/broken.desktop", "no group here\n");
  const std::string icon = fx.file("/usr/share/icons/hicolor/48x48/apps/sync.png", "png");

  const auto items = fx.service().scanLoginItems();
  ASSERT_EQ(items.size(), 3u);
  EXPECT_EQ(items[0].id, "login-" + fx.root + "/etc/xdg/autostart/at-spi-dbus-bus.desktop");
  EXPECT_EQ(items[0].name, "AT-SPI D-Bus Bus");
  EXPECT_TRUE(items[0].isEnabled);
  EXPECT_EQ(items[1].path, fx.home + "/.config/autostart/sync.desktop");
  EXPECT_EQ(items[1].name, "sync");
  EXPECT_FALSE(items[1].isEnabled);
  EXPECT_EQ(items[1].icon, icon);
  EXPECT_EQ(items[2].path, fx.home + "/.config/autostart/xdg-user-dirs.desktop");
  EXPECT_FALSE(items[2].isEnabled);
}

// The machine of the ranking cases: a user agent and a daemon for each row of the table, the
// overrides and the dump written for them.
struct RankingMachine : StartupFixture {
  RankingMachine() {
    fakeTool("/bin/launchctl", "case \"$2\" in\n"
                               "system) printf 'disabled services = {\\n\\t\"com.acme.daemon\" => enabled\\n"
                               "\\t\"com.unknown.daemon\" => enabled\\n\\t\"com.off.daemon\" => disabled\\n}\\n';;\n"
                               "gui/*) printf '\\t\"com.acme.agent\" => enabled\\n\\t\"com.plain.agent\" => disabled\\n';;\n"
                               "esac");
    fakeTool("/usr/bin/sfltool", "printf '%s\\n' '#1:' 'Disposition: [disabled]' 'Identifier: Acme' "
                                 "'#2:' 'Disposition: [disabled]' 'Identifier: Unknown Developer' "
                                 "'#3:' 'Name: Acme Helper' 'Identifier: 8.com.acme.agent' 'Parent Identifier: Acme' "
                                 "'#4:' 'Identifier: 8.com.unknown.agent' 'Parent Identifier: Unknown Developer' "
                                 "'#5:' 'Identifier: 16.com.acme.daemon' 'Parent Identifier: Acme' "
                                 "'#6:' 'Identifier: 16.com.unknown.daemon' 'Parent Identifier: Unknown Developer'");
    plist("~/Library/LaunchAgents", "a.plist", "com.acme.agent");
    plist("~/Library/LaunchAgents", "b.plist", "com.unknown.agent");
    plist("/Library/LaunchAgents", "c.plist", "com.plain.agent");
    plist("/Library/LaunchDaemons", "d.plist", "com.acme.daemon");
    plist("/Library/LaunchDaemons", "e.plist", "com.unknown.daemon");
    plist("/Library/LaunchDaemons", "f.plist", "com.off.daemon");
    plist("/Library/LaunchDaemons", "g.plist", "com.free.daemon");
  }
};

TEST(LaunchdScan, SourcesRankDifferentlyForAgentsAndDaemons) {
  RankingMachine fx;
  const auto items = fx.service().scanLaunchAgents({});
  ASSERT_EQ(items.size(), 7u);
  const auto enabled = [&](const std::string& label) { return find(items, "agent-" + label)->isEnabled; };
  EXPECT_TRUE(enabled("com.acme.agent")) << "the user's override outranks a disabled parent";
  EXPECT_FALSE(enabled("com.unknown.agent")) << "for an agent, a disabled Unknown Developer counts";
  EXPECT_FALSE(enabled("com.plain.agent"));
  EXPECT_FALSE(enabled("com.acme.daemon")) << "a named parent outranks the system's override";
  EXPECT_TRUE(enabled("com.unknown.daemon")) << "Unknown Developer says nothing about one daemon";
  EXPECT_FALSE(enabled("com.off.daemon"));
  EXPECT_TRUE(enabled("com.free.daemon"));
  EXPECT_EQ(find(items, "agent-com.acme.agent")->name, "Acme Helper Agent");
  EXPECT_EQ(find(items, "agent-com.free.daemon")->name, "Daemon Service");
}

TEST(LaunchdScan, WithoutTheToolsAgentsAndDaemonsAreOn) {
  RankingMachine fx;
  fx.tools["/bin/launchctl"] = fx.tmp / "missing";
  fx.tools["/usr/bin/sfltool"] = fx.tmp / "missing";
  for (const auto& item : fx.service().scanLaunchAgents({})) EXPECT_TRUE(item.isEnabled) << item.id;
}

TEST(LaunchdScan, FirstRootWinsAndPathNameAndSortFollowTheRules) {
  StartupFixture fx;
  const std::string own = fx.plist("~/Library/LaunchAgents", "sync.plist", "com.acme.sync",
                                   StartupFixture::program("/Applications/Acme Sync.app/Contents/MacOS/sync"));
  fx.plist("/Library/LaunchAgents", "sync.plist", "com.acme.sync", StartupFixture::program("/usr/bin/other"));
  fx.plist("/Library/LaunchAgents", "deep.plist", "org.example.deep",
           StartupFixture::programArguments({"/Applications/Deep.app/a/b/c/d/e/f/tool", "--flag"}));
  fx.plist("/Library/LaunchAgents", "args.plist", "net.example.helper",
           "  <key>Program</key>\n  <integer>1</integer>\n" +
               StartupFixture::programArguments({"/usr/local/bin/helper", "-d"}));
  const std::string bare = fx.plist("/Library/LaunchDaemons", "bare.plist", "NODOTS");
  fx.plist("/Library/LaunchDaemons", "same-name.plist", "io.other.sync");
  fx.file("/Library/LaunchDaemons/garbage.plist", std::string("\0\1\2bplist00", 12));
  fx.file("/Library/LaunchDaemons/nolabel.plist", "<plist><dict><key>Program</key><string>/x</string></dict></plist>");
  fx.file("/Library/LaunchDaemons/empty.plist", "<plist><dict/></plist>");
  fx.file("/Library/LaunchDaemons/readme.txt", "not a plist");

  std::vector<std::string> progress;
  const auto items = fx.service().scanLaunchAgents([&](const std::string& text) { progress.push_back(text); });
  std::vector<std::string> names;
  for (const auto& item : items) names.push_back(item.name);
  EXPECT_EQ(names, (std::vector<std::string>{"Acme Sync Agent", "Deep Agent", "Helper Agent", "Nodots Service",
                                             "Sync Service"}));
  const StartupItem* sync = find(items, "agent-com.acme.sync");
  EXPECT_EQ(sync->plistPath, own);
  EXPECT_EQ(sync->path, "/Applications/Acme Sync.app");
  EXPECT_EQ(sync->label, "com.acme.sync");
  EXPECT_EQ(find(items, "agent-org.example.deep")->path, "/Applications/Deep.app/a/b/c/d/e/f/tool")
      << "an executable deeper than six levels belongs to no application";
  EXPECT_EQ(find(items, "agent-net.example.helper")->path, "/usr/local/bin/helper");
  EXPECT_EQ(find(items, "agent-NODOTS")->path, bare);
  EXPECT_EQ(progress.size(), 9u);
  EXPECT_EQ(std::count(progress.begin(), progress.end(), "Checking sync.plist\u2026"), 2);
}

TEST(LaunchdScan, HostilePropertyListsAddNothingAndStallNothing) {
  StartupFixture fx;
  std::string nested;
  for (int i = 0; i < 30000; ++i) nested += "<dict><key>a</key>";
  nested += "<string>x</string>";
  for (int i = 0; i < 30000; ++i) nested += "</dict>";
  fx.file("/Library/LaunchAgents/nested.plist", "<plist version=\"1.0\">" + nested + "</plist>");
  fx.plist("/Library/LaunchAgents", "huge.plist", "com.huge", "<key>Pad</key><string>" + std::string(2 << 20, 'x') + "</string>\n");
  // A FIFO where a property list should be: opening it must not wait for a writer.
  ASSERT_EQ(::mkfifo((fx.root + "/Library/LaunchAgents/fifo.plist").c_str(), 0600), 0);
  fx.plist("/Library/LaunchAgents", "fine.plist", "com.fine");
  const auto items = fx.service().scanLaunchAgents({});
  ASSERT_EQ(items.size(), 1u);
  EXPECT_EQ(items[0].label, "com.fine");
}

TEST(LaunchdScan, AppInfoWalksSixLevelsAndCapitalisesTheLabel) {
  EXPECT_EQ(StartupItemsService::resolveAppInfo("/Applications/A.app/Contents/Library/LoginItems/x/y/bin", "l").appPath,
            "/Applications/A.app");
  EXPECT_FALSE(StartupItemsService::resolveAppInfo("/Applications/A.app/1/2/3/4/5/6/bin", "l").appPath);
  EXPECT_EQ(StartupItemsService::resolveAppInfo(std::nullopt, "com.acme.sYNC-agent").name, "Sync-Agent");
  EXPECT_EQ(StartupItemsService::resolveAppInfo("/bin", "plain").name, "Plain");
  EXPECT_EQ(StartupItemsService::resolveExecutablePath({std::nullopt, std::vector<std::string>{}}), std::nullopt);
}

TEST(ServiceScan, SwitchableUserAndSystemServicesWithTheirUnitFiles) {
  StartupFixture fx;
  fx.fakeTool("/usr/bin/systemctl",
              "if [ \"$1\" = --user ]; then cat '" + StartupFixture::recording("systemctl-user-list-unit-files.txt") +
                  "'; printf 'syncthing.service enabled enabled\\nghost.service enabled enabled\\n'; "
                  "else cat '" + StartupFixture::recording("systemctl-system-list-unit-files-excerpt.txt") + "'; fi");
  fx.file("/usr/lib/systemd/user/systemd-tmpfiles-setup.service", "[Unit]\nDescription=Create User's Volatile Files\n");
  fx.file("~/.config/systemd/user/syncthing.service",
          "[Unit]\nDescription=Syncthing\n[Service]\nExecStart=/usr/bin/syncthing serve\n");
  fx.file("/lib/systemd/system/console-getty.service", "[Unit]\nDescription=Console Getty\n");
  fx.file("/lib/systemd/system/getty@.service", "[Unit]\nDescription=Getty on %I\n");

  const auto items = fx.service().scanLaunchAgents({});
  std::vector<std::string> ids;
  for (const auto& item : items) ids.push_back(item.id);
  EXPECT_EQ(ids, (std::vector<std::string>{"agent-console-getty.service", "agent-systemd-tmpfiles-setup.service",
                                           "agent-syncthing.service"}));
  EXPECT_EQ(items[0].name, "Console Getty Service");
  EXPECT_FALSE(items[0].isEnabled);
  EXPECT_EQ(items[0].plistPath, fx.root + "/lib/systemd/system/console-getty.service");
  EXPECT_EQ(items[1].name, "Create User's Volatile Files Agent");
  EXPECT_EQ(items[2].name, "Syncthing Agent");
  EXPECT_TRUE(items[2].isEnabled);
  EXPECT_EQ(items[2].path, "/usr/bin/syncthing");
  EXPECT_EQ(items[2].label, "syncthing.service");
}

TEST(RunShell, AHungToolIsStoppedAndTheScanGoesOn) {
  StartupFixture fx;
  // The tool's child keeps the pipes open too: the whole group is stopped at the limit.
  fx.fakeTool("/bin/launchctl", "printf '\\t\"com.acme.agent\" => disabled\\n'; sleep 300 & sleep 300");
  fx.plist("~/Library/LaunchAgents", "a.plist", "com.acme.agent");
  StartupItemsService service(fx.platform(), std::chrono::milliseconds(300));
  const auto items = service.scanLaunchAgents({});
  ASSERT_EQ(items.size(), 1u);
  EXPECT_TRUE(items[0].isEnabled) << "what a stopped tool printed is not taken";
  EXPECT_EQ(service.runShell("/bin/launchctl", {}, std::chrono::milliseconds(300)).exitCode, -1);
}

TEST(RunShell, DrainsBothPipesAndJoinsThem) {
  StartupFixture fx;
  // More than a pipe holds on each stream, so a reader of one alone would stall the child.
  fx.fakeTool("/usr/bin/sfltool", "head -c 200000 /dev/zero | tr '\\0' a; head -c 200000 /dev/zero | tr '\\0' b >&2; "
                                  "printf '\\n  tail \\n' >&2; exit 3");
  const auto result = fx.service().runShell("/usr/bin/sfltool", {});
  EXPECT_EQ(result.exitCode, 3);
  EXPECT_EQ(result.output, std::string(200000, 'a') + "\nstderr: " + std::string(200000, 'b') + "\n  tail");
  fx.fakeTool("/usr/bin/sfltool", "printf '\\377\\376' ; echo ' only this' >&2");
  EXPECT_EQ(fx.service().runShell("/usr/bin/sfltool", {}).output, "only this");
  EXPECT_THROW(fx.service().runShell("/bin/launchctl", {}), std::runtime_error);
}

} // namespace
} // namespace halcyra::startup
