#include <cstdio>
#include <cstdlib>

#include <QGuiApplication>
#include <QLocale>
#include <QQmlApplicationEngine>
#include <QQmlExtensionPlugin>
#include <QQuickStyle>
#include <QTranslator>
#include <QUrl>

#include "app/HalcyraApp.h"
#include "core/Version.h"

Q_IMPORT_QML_PLUGIN(HalcyraPlugin)

namespace {

bool isSet(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr && *value != '\0';
}

/// Without a display Qt aborts with a terse platform-plugin error; say what to do instead.
bool reportMissingDisplay() {
#if defined(Q_OS_LINUX)
  if (isSet("DISPLAY") || isSet("WAYLAND_DISPLAY") || isSet("QT_QPA_PLATFORM")) return false;
  std::fputs("halcyra-gui: no display found (neither DISPLAY nor WAYLAND_DISPLAY is set).\n"
             "Run it in a desktop session, or under a virtual display:\n"
             "  xvfb-run -a build/bin/halcyra-gui\n"
             "or without any window system, drawing off screen:\n"
             "  QT_QPA_PLATFORM=offscreen build/bin/halcyra-gui\n"
             "The command line works everywhere: build/bin/halcyra --help\n",
             stderr);
  return true;
#else
  return false;
#endif
}

} // namespace

int main(int argc, char* argv[]) {
  if (reportMissingDisplay()) return 1;

  QGuiApplication application(argc, argv);
  QGuiApplication::setOrganizationName(QStringLiteral("Halcyra"));
  QGuiApplication::setApplicationName(QStringLiteral("Halcyra"));
  QGuiApplication::setApplicationVersion(QString::fromLatin1(halcyra::core::kVersion));
#if !defined(Q_OS_MACOS)
  // Our controls draw themselves; Basic keeps the few stock ones (scroll bars, menus) plain.
  QQuickStyle::setStyle(QStringLiteral("Basic"));
#endif

  // Texts are English keys; a translation for the user's language is used when one is built in.
  QTranslator translator;
  if (translator.load(QLocale(), QStringLiteral("halcyra"), QStringLiteral("_"), QStringLiteral(":/i18n"))) {
    QGuiApplication::installTranslator(&translator);
  }

  halcyra::app::HalcyraApp app;
  QQmlApplicationEngine engine;
  engine.addImportPath(QStringLiteral("qrc:/"));
  app.exposeTo(engine);
  engine.load(QUrl(QStringLiteral("qrc:/Halcyra/Main.qml")));
  if (engine.rootObjects().isEmpty()) return 1;
  return QGuiApplication::exec();
}
