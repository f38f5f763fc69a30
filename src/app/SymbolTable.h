#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>

namespace halcyra::app {

/// Which icon of the bundled set draws each symbol name the screens use. The table is a
/// resource (icons/symbols.tsv): a symbol name and an icon file name per line, '#' comments.
class SymbolTable {
public:
  /// The bundled table.
  static const SymbolTable& bundled();
  /// A table from its text; malformed lines are skipped.
  static SymbolTable parse(const QByteArray& text);

  /// The resource path of the symbol's SVG file, or empty when the table has no row for it.
  QString file(const QString& symbol) const;
  const QHash<QString, QString>& rows() const noexcept { return rows_; }

  /// Where the SVG files lie among the resources.
  static constexpr const char* kIconRoot = ":/icons/phosphor/";

private:
  QHash<QString, QString> rows_;
};

} // namespace halcyra::app
