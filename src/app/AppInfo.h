#pragma once

#include <QObject>
#include <QString>
#include <QVariantList>

namespace halcyra::app {

/// The program's name, version and public addresses: the one place where the web addresses
/// behind the help menu, the review button and the about sheet are configured.
class AppInfo : public QObject {
  Q_OBJECT
  Q_PROPERTY(QString name READ name CONSTANT)
  Q_PROPERTY(QString version READ version CONSTANT)
  Q_PROPERTY(QString website READ website CONSTANT)
  Q_PROPERTY(QString websiteLabel READ websiteLabel CONSTANT)
  Q_PROPERTY(QString contactUrl READ contactUrl CONSTANT)
  Q_PROPERTY(QString reviewUrl READ reviewUrl CONSTANT)
  Q_PROPERTY(QString socialUrl READ socialUrl CONSTANT)
  Q_PROPERTY(QVariantList components READ components CONSTANT)

public:
  /// `shortVersion` is the bundle's short version string (empty when there is none).
  explicit AppInfo(QString shortVersion, QObject* parent = nullptr);

  static QString name() { return QStringLiteral("Halcyra"); }
  /// "v" and the short version, or "v1.0.0" when there is none.
  QString version() const;
  static QString versionText(const QString& shortVersion);

  static QString website() { return QStringLiteral("https://halcyra.app"); }
  static QString websiteLabel() { return QStringLiteral("halcyra.app"); }
  static QString contactUrl() { return website() + QStringLiteral("/contact"); }
  static QString reviewUrl() { return QStringLiteral("https://www.trustpilot.com/evaluate/halcyra.app"); }
  static QString socialUrl() { return QStringLiteral("https://x.com/halcyraapp"); }

  /// The third-party components the program ships, for the open-source notices: each with
  /// `name`, `summary` and `file`, the name of its licence text among the resources.
  QVariantList components() const;
  /// The licence text of a component (`file` of `components`); empty if there is none.
  Q_INVOKABLE QString licenseText(const QString& file) const;

private:
  QString shortVersion_;
};

} // namespace halcyra::app
