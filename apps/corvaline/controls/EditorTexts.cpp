#include "EditorTexts.h"

#include <QCoreApplication>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLibraryInfo>
#include <QTextDocument>

namespace editor {

static QString SystemLocale() {
  for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"})
    if (const QString value = qEnvironmentVariable(variable); !value.isEmpty())
      return value.section('.', 0, 0).section('@', 0, 0);
  return "en";
}

EditorTexts::EditorTexts(const QString& locale) {
  for (const QString& name : {locale, locale.section('_', 0, 0)}) {
    QFile file(":/texts/" + name + ".json");
    if (!file.open(QIODevice::ReadOnly))
      continue;
    const QJsonObject table = QJsonDocument::fromJson(file.readAll()).object();
    for (auto entry = table.begin(); entry != table.end(); ++entry)
      _texts.insert(entry.key(), entry.value().toString());
    return;
  }
}

QString EditorTexts::translate(const char*, const char* source, const char*, int) const {
  return _texts.value(QString::fromUtf8(source));
}

QString TranslatedProblem(const QString& sentence) {
  const qsizetype colon = sentence.lastIndexOf(QStringLiteral(": "));
  const qsizetype start = colon < 0 ? 0 : colon + 2;
  const QByteArray reason = sentence.mid(start).toUtf8();
  return sentence.left(start) + QCoreApplication::translate("", reason.constData());
}

QString ToolTipOf(const QString& name) {
  return Qt::mightBeRichText(name) ? name.toHtmlEscaped() : name;
}

void UseSystemLanguage() {
  const QString locale = SystemLocale();
  auto* library = new QTranslator(QCoreApplication::instance());
  if (library->load("qtbase_" + locale, QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
    QCoreApplication::installTranslator(library);
  auto* own = new EditorTexts(locale);
  own->setParent(QCoreApplication::instance());
  QCoreApplication::installTranslator(own);
}

} // namespace editor
