#include "app/AppInfo.h"

#include <QFile>
#include <QVariantMap>

namespace halcyra::app {

AppInfo::AppInfo(QString shortVersion, QObject* parent) : QObject(parent), shortVersion_(std::move(shortVersion)) {}

QString AppInfo::version() const { return versionText(shortVersion_); }

QString AppInfo::versionText(const QString& shortVersion) {
  const QString trimmed = shortVersion.trimmed();
  return QStringLiteral("v") + (trimmed.isEmpty() ? QStringLiteral("1.0.0") : trimmed);
}

QVariantList AppInfo::components() const {
  struct Component {
    const char* name;
    const char* summary;
    const char* file;
  };
  static constexpr Component kComponents[] = {
      {"Qt 6", "Application framework and the window's interface (GNU LGPL version 3).", "qt"},
      {"OpenSSL", "SHA-256 digests, AES-GCM encryption and random numbers (Apache License 2.0).", "openssl"},
      {"libcurl", "Network transfers (curl licence).", "curl"},
      {"JSON for Modern C++", "Reading and writing JSON (MIT licence).", "nlohmann-json"},
      {"pugixml", "Reading XML feeds (MIT licence).", "pugixml"},
      {"libplist", "Reading property lists (GNU LGPL version 2.1).", "libplist"},
      {"libarchive", "Reading archives (BSD 2-clause licence).", "libarchive"},
      {"{fmt}", "Text formatting (MIT licence).", "fmt"},
      {"Phosphor Icons", "The interface's symbols (MIT licence).", "phosphor"},
  };
  QVariantList list;
  for (const auto& component : kComponents) {
    list.append(QVariantMap{{QStringLiteral("name"), QString::fromUtf8(component.name)},
                            {QStringLiteral("summary"), QString::fromUtf8(component.summary)},
                            {QStringLiteral("file"), QString::fromLatin1(component.file)}});
  }
  return list;
}

QString AppInfo::licenseText(const QString& file) const {
  QFile text(QStringLiteral(":/licenses/") + file + QStringLiteral(".txt"));
  return text.open(QIODevice::ReadOnly) ? QString::fromUtf8(text.readAll()) : QString();
}

} // namespace halcyra::app
