// The editor's texts in the user's language.
#pragma once

#include <QHash>
#include <QTranslator>

namespace editor {

// A table of English texts and what stands for them, texts/LANGUAGE.json. Serves the desktop
// library's own buttons too. A text that is missing stays English.
class EditorTexts : public QTranslator {
public:
  // locale: as "de_AT"; its language is taken when the country has no table of its own.
  explicit EditorTexts(const QString& locale);

  bool isEmpty() const override { return _texts.isEmpty(); }
  QString translate(const char* context, const char* source, const char* comment,
                    int number) const override;
  const QHash<QString, QString>& texts() const { return _texts; }

private:
  QHash<QString, QString> _texts;
};

// "FILE: what is wrong with it" with the part after the name in the user's language, where the
// table has it; the reasons of the image library stay as they are.
QString TranslatedProblem(const QString& sentence);

// A name as a tool tip, which else takes what looks like a tag for one, and reads the file that it
// names as a picture.
QString ToolTipOf(const QString& name);

// Installs the texts for the language of LC_ALL, LC_MESSAGES or LANG in the application.
void UseSystemLanguage();

} // namespace editor
