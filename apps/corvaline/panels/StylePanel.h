// The styles of the user's library at the window's side, each shown on the present image.
#pragma once

#include "EditorDocument.h"
#include "StyleThumbnails.h"

#include <QDockWidget>
#include <QLineEdit>
#include <QListWidget>
#include <QTimer>

#include <vector>

namespace editor {

// Enter or a click on a picture chooses its style; the pointer, or the keyboard's frame, shows it.
// Letters stay the window's shortcuts.
class StyleList : public QListWidget {
  Q_OBJECT

public:
  explicit StyleList(QWidget* parent);

  QSize sizeHint() const override; // two pictures wide

Q_SIGNALS:
  void chosen(int row);
  // What the pointer or the keyboard rests on; −1 when that is none.
  void hovered(int row);

protected:
  void keyPressEvent(QKeyEvent* event) override;
  bool viewportEvent(QEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
};

// Makes its pictures again when the image, its channels, its source of heights or the selection
// have changed, a moment later and only while it is to be seen. They show the styles on the
// original.
class StylePanel : public QDockWidget {
  Q_OBJECT

public:
  StylePanel(EditorDocument& document, QWidget* parent);

  StyleList& list() { return *_list; }
  QLineEdit& search() { return *_search; }
  // The library may have other styles now, or the pictures are of something else.
  void readAgain();
  // All pictures are made, of the present image.
  bool isUpToDate() const { return _areMade && !_isStale; }

Q_SIGNALS:
  void chosen(const LM_style& style, const QString& name);
  void hovered(const LM_style& style);
  void left();

protected:
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;

private:
  void _filter(const QString& words);
  void _refresh();
  void _readStyles();
  void _setPicture(int row, const QImage& picture);

  EditorDocument& _document;
  QLineEdit* _search;
  StyleList* _list;
  StyleThumbnails* _thumbnails;
  QTimer _delay;
  std::vector<LM_style> _styles; // a row each
  bool _isStale = true;          // the image is another one than the pictures are of
  bool _areMade = false;
};

} // namespace editor
