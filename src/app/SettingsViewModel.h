#pragma once

#include <QObject>

namespace halcyra::app {

/// The about sheet's flag, made by the settings screen when it appears.
class SettingsViewModel : public QObject {
  Q_OBJECT
  Q_PROPERTY(bool showAbout READ showAbout WRITE setShowAbout NOTIFY showAboutChanged)

public:
  using QObject::QObject;
  bool showAbout() const noexcept { return showAbout_; }
  void setShowAbout(bool show) {
    if (show == showAbout_) return;
    showAbout_ = show;
    emit showAboutChanged();
  }

signals:
  void showAboutChanged();

private:
  bool showAbout_ = false;
};

} // namespace halcyra::app
