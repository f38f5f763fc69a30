#include <gtest/gtest.h>

#include "startup/StartupTextParsers.h"
#include "support/TempDir.h"

namespace halcyra::startup {
namespace {

std::string recording(const std::string& name) {
  return testing::readFile(std::string(HALCYRA_STARTUP_RECORDINGS) + "/" + name);
}

TEST(LoginItemList, KeepsTabbedLinesInOrderAndPassesOverErrorTexts) {
  const std::string output = "GitHub Desktop\t/Applications/GitHub Desktop.app\n"
                             "   \t  \n"
                             "\t/Applications/Nameless.app\n"
                             "No tab in this line\n"
                             " Docker Desktop \t /Applications/Docker.app \textra\n"
                             "stderr: 36:124: execution error: System Events got an error: Application isn’t running. (-600)";
  const std::vector<LoginItemLine> expected{{"GitHub Desktop", "/Applications/GitHub Desktop.app"},
                                            {"Docker Desktop", "/Applications/Docker.app"}};
  EXPECT_EQ(parseLoginItemList(output), expected);
}

TEST(LoginItemList, SystemEventsErrorsGiveNoItems) {
  EXPECT_TRUE(parseLoginItemList(recording("osascript-errors.txt")).empty());
}

TEST(DisabledServices, OlderTrueAndFalseWordsReadAsWhatTheyMean) {
  const auto overrides = parseDisabledServices(recording("launchctl-print-disabled-user-macos11.txt"));
  EXPECT_EQ(overrides.size(), 15u);
  EXPECT_FALSE(overrides.at("com.apple.Siri.agent"));
  EXPECT_TRUE(overrides.at("at.obdev.littlesnitch.agent"));
  EXPECT_FALSE(overrides.at("5A4RE8SF68.com.tencent.xinWeChat.IPCHelper"));
  // The association block below names the helper's application; it is no switch and does not
  // overwrite the explicit re-enable above it.
  EXPECT_TRUE(overrides.at("com.docker.helper"));
  EXPECT_FALSE(overrides.contains("version.com.docker.helper"));

  const auto system = parseDisabledServices(recording("launchctl-print-disabled-system-macos12.txt"));
  EXPECT_TRUE(system.at("com.apple.screensharing"));
  EXPECT_FALSE(system.at("com.apple.ftpd"));
}

TEST(DisabledServices, NewerWordsAndLinesWithoutBlockHeads) {
  const auto overrides = parseDisabledServices(recording("launchctl-print-disabled-gui-macos26.txt"));
  const std::map<std::string, bool> expected{{"com.apple.ManagedClientAgent.enrollagent", false},
                                             {"com.docker.helper", true}};
  EXPECT_EQ(overrides, expected);
}

TEST(DisabledServices, MalformedLinesArePassedOver) {
  const auto overrides = parseDisabledServices("disabled services = {\n"
                                               "\t\"unterminated => disabled\n"
                                               "\tnot.quoted => disabled\n"
                                               "\t\"odd\" => maybe\n"
                                               "\t\"x\" => enabled\n"
                                               "\t\"x\" => disabled\n"
                                               "}\n"
                                               "stderr: Could not find domain for");
  const std::map<std::string, bool> expected{{"odd", false}, {"x", false}};
  EXPECT_EQ(overrides, expected);
}

TEST(BackgroundTaskDump, NamedDeveloperSwitchedOffDisablesItsDaemon) {
  const BackgroundTaskDump dump = parseBackgroundTaskDump(recording("sfltool-dumpbtm-tahoe.txt"));
  EXPECT_EQ(dump.parentDisabled, (std::set<std::string>{"com.docker.vmnetd"}));
  EXPECT_EQ(dump.namedParentDisabled, (std::set<std::string>{"com.docker.vmnetd"}));
  EXPECT_EQ(dump.names, (std::map<std::string, std::string>{{"com.docker.vmnetd", "com.docker.vmnetd"}}));
}

TEST(BackgroundTaskDump, UnknownDeveloperCountsOnlyAsAParent) {
  const BackgroundTaskDump dump = parseBackgroundTaskDump(recording("sfltool-dumpbtm-macbookair.txt"));
  EXPECT_EQ(dump.parentDisabled, (std::set<std::string>{"com.zerotier.one", "homebrew.mxcl.php@8.2"}));
  EXPECT_TRUE(dump.namedParentDisabled.empty());
  // The developer record's "(null)" name is not kept, and AdGuard has no parent.
  EXPECT_EQ(dump.names, (std::map<std::string, std::string>{{"com.zerotier.one", "launch.sh"},
                                                            {"homebrew.mxcl.php@8.2", "php-fpm"}}));
}

TEST(BackgroundTaskDump, RecordRulesAtTheEdges) {
  const BackgroundTaskDump dump = parseBackgroundTaskDump(
      " #1:\n"
      "   Name: Acme\n"
      "   Disposition: [disabled, allowed] (0x2)\n"
      "   Identifier: Acme\n"
      " #2:\n"
      "   Name: First\n"
      "   Name: Second\n"
      "   Identifier: 8.com.acme.agent\n"
      "   Parent Identifier: Acme\n"
      " #3:\n"
      "   Name: (null)\n"
      "   Disposition: [enabled, allowed] (0x3)\n"
      "   Identifier: nodot\n"
      "   Parent Identifier: Acme\n"
      " #4 Identifier heads are not record heads:\n"
      " #5:\n"
      "   Name: (null)\n"
      "   Identifier: 16.com.acme.daemon\n"
      "   Parent Identifier: Acme\n"
      " #6:\n"
      "   Disposition: [enabled, allowed] (0x3)\n"
      "   Identifier: Acme\n");
  // A later record of the same identifier overwrites the first: Acme is on in the end, so no
  // child of it counts as disabled, though records without a disposition still gave names.
  EXPECT_TRUE(dump.parentDisabled.empty());
  EXPECT_EQ(dump.names, (std::map<std::string, std::string>{{"com.acme.agent", "First"}}));

  const BackgroundTaskDump withoutLast = parseBackgroundTaskDump(
      "#1:\nDisposition: [disabled] (0x2)\nIdentifier: Acme\n#2:\nIdentifier: 8.com.acme.agent\nParent Identifier: Acme\n"
      "#3:\nIdentifier: nodot\nParent Identifier: Acme\n");
  EXPECT_EQ(withoutLast.namedParentDisabled, (std::set<std::string>{"com.acme.agent"}));
}

TEST(DesktopEntry, ReadsTheCapturedEntries) {
  const auto atSpi = parseDesktopEntry(recording("at-spi-dbus-bus.desktop"));
  ASSERT_TRUE(atSpi);
  EXPECT_EQ(atSpi->text("Name"), "AT-SPI D-Bus Bus");
  EXPECT_TRUE(desktopEntryIsEnabled(*atSpi));
  const auto userDirs = parseDesktopEntry(recording("xdg-user-dirs.desktop"));
  ASSERT_TRUE(userDirs);
  EXPECT_EQ(userDirs->value("X-KDE-autostart-phase"), "1");
  EXPECT_FALSE(parseDesktopEntry("Name=No group\n"));
}

TEST(DesktopEntry, EachDesktopsSwitchTurnsItOff) {
  const auto enabled = [](const std::string& text) { return desktopEntryIsEnabled(*parseDesktopEntry(text)); };
  EXPECT_FALSE(enabled("[Desktop Entry]\nHidden=true\n"));
  EXPECT_FALSE(enabled("[Desktop Entry]\nX-GNOME-Autostart-enabled=false\n"));
  EXPECT_FALSE(enabled("[Desktop Entry]\nX-MATE-Autostart-enabled=0\n"));
  EXPECT_TRUE(enabled("[Desktop Entry]\nHidden=false\nX-GNOME-Autostart-enabled=true\n"));
  // Keys of another group are not the entry's.
  EXPECT_TRUE(enabled("[Desktop Entry]\nName=x\n[Desktop Action off]\nHidden=true\n"));
}

TEST(DesktopEntry, SwitchRewritesOnlyTheSwitchKeys) {
  const std::string original = "# comment\n[Desktop Entry]\nName=Sync\nX-GNOME-Autostart-enabled=true\nHidden=false\n"
                               "\n[Desktop Action new]\nName=New\n";
  const std::string off = desktopEntryWithSwitch(original, false);
  EXPECT_EQ(off, "# comment\n[Desktop Entry]\nName=Sync\nX-GNOME-Autostart-enabled=false\nHidden=true\n\n"
                 "[Desktop Action new]\nName=New\n");
  EXPECT_FALSE(desktopEntryIsEnabled(*parseDesktopEntry(off)));
  EXPECT_TRUE(sameApartFromSwitch(*parseDesktopEntry(off), *parseDesktopEntry(original)));
  EXPECT_TRUE(desktopEntryIsEnabled(*parseDesktopEntry(desktopEntryWithSwitch(off, true))));

  // Every group of the entry's name counts for a reader, so each is switched.
  const std::string twice = "[Desktop Entry]\nName=A\n[Desktop Entry]\nHidden=true\n";
  EXPECT_EQ(desktopEntryWithSwitch(twice, true), "[Desktop Entry]\nName=A\nHidden=false\n[Desktop Entry]\nHidden=false\n");

  const std::string captured = recording("at-spi-dbus-bus.desktop");
  EXPECT_EQ(desktopEntryWithSwitch(captured, false), captured + "Hidden=true\n");
}

TEST(UnitFileList, KeepsServiceRowsWithAndWithoutLegend) {
  const auto rows = parseUnitFileList(recording("systemctl-user-list-unit-files.txt"));
  ASSERT_EQ(rows.size(), 10u);
  EXPECT_EQ(rows.back(), (UnitFileState{"systemd-tmpfiles-setup.service", "disabled"}));
  const auto legend = parseUnitFileList(recording("systemctl-user-list-unit-files-legend-excerpt.txt"));
  const std::vector<UnitFileState> expected{{"at-spi-dbus-bus.service", "static"},
                                            {"systemd-tmpfiles-setup.service", "disabled"}};
  EXPECT_EQ(legend, expected);
}

TEST(UnitFile, DescriptionAndProgramOfTheFirstExecStart) {
  const auto summary = parseUnitFile("[Unit]\nDescription=Sync files\n[Service]\n"
                                     "ExecStart=-/usr/bin/syncthing serve --no-browser\nExecStart=/bin/false\n"
                                     "[Install]\nDescription=not this\n");
  EXPECT_EQ(summary.description, "Sync files");
  EXPECT_EQ(summary.program, "/usr/bin/syncthing");
  EXPECT_EQ(parseUnitFile("[Service]\nExecStart=\"/opt/My App/run\" -x\n").program, "/opt/My App/run");
  EXPECT_FALSE(parseUnitFile("[Service]\nExecStart=relative --flag\n").program);
}

} // namespace
} // namespace halcyra::startup
