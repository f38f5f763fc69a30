#include "app/SymbolTable.h"

#include <QFile>
#include <QList>

namespace halcyra::app {

const SymbolTable& SymbolTable::bundled() {
  static const SymbolTable table = [] {
    QFile file(QStringLiteral(":/icons/symbols.tsv"));
    return file.open(QIODevice::ReadOnly) ? parse(file.readAll()) : SymbolTable{};
  }();
  return table;
}

SymbolTable SymbolTable::parse(const QByteArray& text) {
  SymbolTable table;
  for (const QByteArray& rawLine : text.split('\n')) {
    const QByteArray line = rawLine.trimmed();
    if (line.isEmpty() || line.startsWith('#')) continue;
    const QList<QByteArray> fields = line.split('\t');
    if (fields.size() != 2 || fields[0].trimmed().isEmpty() || fields[1].trimmed().isEmpty()) continue;
    table.rows_.insert(QString::fromUtf8(fields[0].trimmed()), QString::fromUtf8(fields[1].trimmed()));
  }
  return table;
}

QString SymbolTable::file(const QString& symbol) const {
  const auto found = rows_.constFind(symbol);
  if (found == rows_.constEnd()) return {};
  return QString::fromLatin1(kIconRoot) + *found + QStringLiteral(".svg");
}

} // namespace halcyra::app
