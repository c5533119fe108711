// The pages about Limn, as they were installed with it.
#pragma once

#include <QMainWindow>

namespace editor {

// A window to read them in, which follows their links.
class HelpWindow : public QMainWindow {
  Q_OBJECT

public:
  explicit HelpWindow(QWidget* parent);
};

} // namespace editor
