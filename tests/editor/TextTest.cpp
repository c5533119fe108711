// Every text of the editor has its translation, with the same places to fill in.
#include "EditorTexts.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QSet>

#include <gtest/gtest.h>

namespace {

QSet<QString> TextsInSources() {
  QSet<QString> texts;
  const QRegularExpression call(R"RE(\btr\(\s*((?:"(?:[^"\\]|\\.)*"\s*)+)\))RE");
  const QDir folder(EDITOR_SOURCES);
  for (const QString& name : folder.entryList({"*.cpp"})) {
    QFile file(folder.filePath(name));
    if (!file.open(QIODevice::ReadOnly))
      continue;
    auto match = call.globalMatch(QString::fromUtf8(file.readAll()));
    while (match.hasNext()) {
      QString text = match.next().captured(1);
      text = text.mid(text.indexOf('"') + 1);
      text.truncate(text.lastIndexOf('"'));
      texts << text.remove(QRegularExpression(R"RE("\s*")RE"));
    }
  }
  return texts;
}

QStringList Places(const QString& text) {
  QStringList places;
  auto match = QRegularExpression("%\\d").globalMatch(text);
  while (match.hasNext())
    places << match.next().captured();
  places.sort();
  return places;
}

} // namespace

TEST(EditorTexts, GermanIsComplete) {
  const QHash<QString, QString> german = editor::EditorTexts("de_AT").texts();
  const QSet<QString> used = TextsInSources();
  ASSERT_GT(used.size(), 50);
  for (const QString& text : used)
    EXPECT_TRUE(german.contains(text)) << text.toStdString();
  for (auto entry = german.begin(); entry != german.end(); ++entry) {
    EXPECT_EQ(Places(entry.key()), Places(entry.value())) << entry.key().toStdString();
    EXPECT_FALSE(entry.value().isEmpty()) << entry.key().toStdString();
  }
}

TEST(EditorTexts, AnUnknownLanguageStaysEnglish) {
  for (const char* locale : {"C", "tlh_XX", "", "../de"})
    EXPECT_TRUE(editor::EditorTexts(locale).isEmpty()) << locale;
}
