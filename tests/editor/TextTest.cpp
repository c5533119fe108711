// Every text of the editor has its translation, with the same places to fill in.
#include "EditorTexts.h"
#include "ImageFiles.h"

#include <QCoreApplication>
#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

QSet<QString> TextsInSources() {
  QSet<QString> texts;
  const QRegularExpression call(R"RE(\btr\(\s*((?:"(?:[^"\\]|\\.)*"\s*)+)\))RE");
  QDirIterator sources(EDITOR_SOURCES, {"*.cpp"}, QDir::Files, QDirIterator::Subdirectories);
  while (sources.hasNext()) {
    QFile file(sources.next());
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

TEST(EditorTexts, WhatIsWrongWithAFileIsSaidInGerman) {
  editor::EditorTexts german("de");
  QCoreApplication::installTranslator(&german);
  const struct {
    QString english, german;
  } cases[] = {
      {"/a: b/c.jpg: is empty", "/a: b/c.jpg: ist leer"},
      {"c.jpg: VipsJpeg: premature end", "c.jpg: VipsJpeg: premature end"},
      {"no file named", "no file named"},
  };
  for (const auto& problem : cases)
    EXPECT_EQ(editor::TranslatedProblem(problem.english), problem.german);
  // Reasons are looked up as they are thrown: a reworded one must take its German with it.
  QTemporaryDir folder;
  for (const QString& name : {folder.path(), folder.filePath("none.jpg")}) {
    try {
      editor::OpenImageFile(name);
      ADD_FAILURE() << name.toStdString();
    } catch (const std::exception& error) {
      const QString sentence = QString::fromUtf8(error.what());
      EXPECT_NE(editor::TranslatedProblem(sentence), sentence) << error.what();
    }
  }
  QCoreApplication::removeTranslator(&german);
}

TEST(EditorTexts, AnUnknownLanguageStaysEnglish) {
  for (const char* locale : {"C", "tlh_XX", "", "../de"})
    EXPECT_TRUE(editor::EditorTexts(locale).isEmpty()) << locale;
}
