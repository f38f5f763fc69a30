#include "app/SymbolImageProvider.h"

#include <QColor>
#include <QFile>
#include <QMutexLocker>
#include <QPainter>
#include <QStringList>
#include <QSvgRenderer>

#include "app/SymbolTable.h"

namespace halcyra::app {

SymbolImageProvider::SymbolImageProvider() : QQuickImageProvider(QQuickImageProvider::Image) {}

QByteArray SymbolImageProvider::svgText(const QString& symbol) {
  // Images may be requested from Qt Quick's loader threads.
  QMutexLocker lock(&mutex_);
  if (const auto cached = svgCache_.constFind(symbol); cached != svgCache_.constEnd()) return *cached;
  QString path = SymbolTable::bundled().file(symbol);
  if (path.isEmpty()) path = SymbolTable::bundled().file(QStringLiteral("folder"));
  QFile file(path);
  const QByteArray text = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
  svgCache_.insert(symbol, text);
  return text;
}

QImage SymbolImageProvider::requestImage(const QString& id, QSize* size, const QSize& requestedSize) {
  const qsizetype slash = id.lastIndexOf(QLatin1Char('/'));
  const QString symbol = slash < 0 ? id : id.left(slash);
  // "RRGGBB" tints; "RRGGBB-RRGGBB" paints a gradient from top to bottom.
  const QStringList colours = slash < 0 ? QStringList() : id.mid(slash + 1).split(QLatin1Char('-'));
  QColor color = colours.isEmpty() ? QColor(Qt::black) : QColor(QLatin1Char('#') + colours.first());
  if (!color.isValid()) color = Qt::black;
  QColor gradientEnd = colours.size() > 1 ? QColor(QLatin1Char('#') + colours.at(1)) : QColor();

  const QSize target(requestedSize.width() > 0 ? requestedSize.width() : 64,
                     requestedSize.height() > 0 ? requestedSize.height() : 64);
  QImage image(target, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);

  QByteArray svg = svgText(symbol);
  if (gradientEnd.isValid()) {
    const QByteArray defs = "<defs><linearGradient id=\"tint\" x1=\"0\" y1=\"0\" x2=\"0\" y2=\"1\">"
                            "<stop offset=\"0\" stop-color=\"" + color.name(QColor::HexRgb).toLatin1() +
                            "\"/><stop offset=\"1\" stop-color=\"" + gradientEnd.name(QColor::HexRgb).toLatin1() +
                            "\"/></linearGradient></defs>";
    svg.replace("currentColor", "url(#tint)");
    const qsizetype open = svg.indexOf('>');
    if (open >= 0) svg.insert(open + 1, defs);
  } else {
    svg.replace("currentColor", color.name(QColor::HexRgb).toLatin1());
  }
  QSvgRenderer renderer(svg);
  if (renderer.isValid()) {
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(color.alphaF());
    renderer.render(&painter, QRectF(QPointF(0, 0), QSizeF(target)));
  }
  if (size) *size = target;
  return image;
}

} // namespace halcyra::app
