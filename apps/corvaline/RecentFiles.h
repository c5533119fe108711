// The images opened last, kept from one session to the next.
#pragma once

#include <QMenu>

namespace editor {

// A menu of the files, the latest first.
class RecentFiles : public QMenu {
  Q_OBJECT

public:
  static constexpr int MOST = 8;

  explicit RecentFiles(const QString& title, QWidget* parent);

  static QStringList files();
  void add(const QString& path);
  void remove(const QString& path);

Q_SIGNALS:
  void chosen(const QString& path);

private:
  void _set(const QStringList& files);
  void _fill();
};

} // namespace editor
