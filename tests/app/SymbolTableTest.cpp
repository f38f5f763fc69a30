#include <gtest/gtest.h>

#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QSet>

#include "app/NavigationItem.h"
#include "app/SymbolTable.h"
#include "clean/PreviewLayout.h"
#include "clean/Sections.h"

using halcyra::app::SymbolTable;

namespace {

const QString kAppDir = QStringLiteral(HALCYRA_SOURCE_DIR "/src/app");

SymbolTable sourceTable() {
  QFile file(kAppDir + QStringLiteral("/icons/symbols.tsv"));
  EXPECT_TRUE(file.open(QIODevice::ReadOnly));
  return SymbolTable::parse(file.readAll());
}

/// Symbol names the QML files spell out: string literals shaped like symbol names on the lines
/// that set a `symbol`, including both branches of a conditional.
QSet<QString> symbolsInScreens() {
  QSet<QString> names;
  const QRegularExpression literal(QStringLiteral("\"([a-z0-9]+(?:\\.[a-z0-9]+)*)\""));
  QDirIterator files(kAppDir + QStringLiteral("/qml"), {QStringLiteral("*.qml")}, QDir::Files, QDirIterator::Subdirectories);
  while (files.hasNext()) {
    QFile file(files.next());
    if (!file.open(QIODevice::ReadOnly)) continue;
    for (const QString& line : QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'))) {
      if (!line.contains(QLatin1String("symbol:"))) continue;
      auto matches = literal.globalMatch(line.mid(line.indexOf(QLatin1String("symbol:"))));
      while (matches.hasNext()) names.insert(matches.next().captured(1));
    }
  }
  return names;
}

void expectDrawable(const SymbolTable& table, const QString& symbol, const QString& usedBy) {
  const QString file = table.file(symbol);
  EXPECT_FALSE(file.isEmpty()) << "no icon for \"" << symbol.toStdString() << "\" used by " << usedBy.toStdString();
  if (file.isEmpty()) return;
  const QString onDisk = kAppDir + QStringLiteral("/icons/phosphor/") + file.mid(file.lastIndexOf(QLatin1Char('/')) + 1);
  EXPECT_TRUE(QFile::exists(onDisk)) << onDisk.toStdString() << " is not bundled";
}

} // namespace

TEST(SymbolTable, EverySymbolAScreenNamesHasABundledIcon) {
  const SymbolTable table = sourceTable();
  const QSet<QString> used = symbolsInScreens();
  ASSERT_GT(used.size(), 40); // the scan found the screens' symbols at all
  for (const QString& symbol : used) expectDrawable(table, symbol, QStringLiteral("a screen"));

  for (const auto& row : halcyra::app::navigationRows()) expectDrawable(table, QString::fromLatin1(row.icon), QStringLiteral("the sidebar"));
  for (const auto& section : halcyra::clean::sectionNames()) {
    const auto icon = halcyra::clean::sectionIcon(section);
    expectDrawable(table, QString::fromUtf8(icon.data(), static_cast<qsizetype>(icon.size())), QStringLiteral("a section card"));
  }
  for (const char* path : {"a.app", "a.log", "a.plist", "a.json", "a.db", "a.zip", "a.dmg", "a"}) {
    const auto icon = halcyra::clean::fileIcon(path);
    expectDrawable(table, QString::fromUtf8(icon.data(), static_cast<qsizetype>(icon.size())), QStringLiteral("the review list"));
  }
}

TEST(SymbolTable, ParsingSkipsCommentsAndMalformedLines) {
  const SymbolTable table = SymbolTable::parse("# comment\ntrash\ttrash\n\nbroken line\nno.icon\t\ngear\tgear\textra\n");
  EXPECT_EQ(table.rows().size(), 1);
  EXPECT_EQ(table.file(QStringLiteral("trash")), QStringLiteral(":/icons/phosphor/trash.svg"));
  EXPECT_TRUE(table.file(QStringLiteral("gear")).isEmpty());
}
