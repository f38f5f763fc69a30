#pragma once

#include <QHash>
#include <QImage>
#include <QMutex>
#include <QQuickImageProvider>

namespace halcyra::app {

/// Draws symbols for `image://symbol/<name>/<colour>` in any colour: the icon's SVG text has
/// its "currentColor" replaced before QSvgRenderer draws it, since Qt Quick cannot tint an SVG.
/// The colour is hex without '#' (RRGGBB or AARRGGBB), or two of them joined by '-' for a
/// gradient from top to bottom. An unknown name draws the folder icon,
/// because engines may name a category's symbol that no screen of ours lists.
class SymbolImageProvider : public QQuickImageProvider {
public:
  SymbolImageProvider();

  QImage requestImage(const QString& id, QSize* size, const QSize& requestedSize) override;

private:
  QByteArray svgText(const QString& symbol);

  QMutex mutex_;
  QHash<QString, QByteArray> svgCache_;
};

} // namespace halcyra::app
