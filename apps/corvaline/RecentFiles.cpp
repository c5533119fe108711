#include "RecentFiles.h"

#include "EditorTexts.h"

#include <QFileInfo>
#include <QSettings>

namespace editor {

static constexpr const char* SETTING = "recentFiles";

RecentFiles::RecentFiles(const QString& title, QWidget* parent) : QMenu(title, parent) {
  setToolTipsVisible(true);
  _fill();
  connect(this, &QMenu::aboutToShow, this, &RecentFiles::_fill);
}

QStringList RecentFiles::files() {
  return QSettings().value(SETTING).toStringList().mid(0, MOST);
}

void RecentFiles::add(const QString& path) {
  const QString whole = QFileInfo(path).absoluteFilePath();
  QStringList list = files();
  list.removeAll(whole);
  list.prepend(whole);
  _set(list.mid(0, MOST));
}

void RecentFiles::remove(const QString& path) {
  QStringList list = files();
  list.removeAll(QFileInfo(path).absoluteFilePath());
  _set(list);
}

void RecentFiles::_set(const QStringList& files) {
  QSettings().setValue(SETTING, files);
  _fill();
}

void RecentFiles::_fill() {
  clear();
  int number = 0;
  for (const QString& path : files()) {
    QString name = QFileInfo(path).fileName();
    QAction* action = addAction(QString("&%1  %2").arg(++number).arg(name.replace("&", "&&")));
    action->setToolTip(ToolTipOf(path));
    action->setStatusTip(path);
    connect(action, &QAction::triggered, this, [this, path] { Q_EMIT chosen(path); });
  }
  setEnabled(number > 0);
  menuAction()->setEnabled(number > 0);
}

} // namespace editor
