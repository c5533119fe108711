// The styles of the user's library at the window's side, each shown on the present image.
#pragma once

#include "EditorDocument.h"
#include "StyleThumbnails.h"

#include <QDockWidget>
#include <QListWidget>
#include <QTimer>

#include <vector>

namespace editor {

// Enter or a click on a picture chooses its style. Letters stay the window's shortcuts.
class StyleList : public QListWidget {
  Q_OBJECT

public:
  explicit StyleList(QWidget* parent);

  QSize sizeHint() const override; // two pictures wide

Q_SIGNALS:
  void chosen(int row);

protected:
  void keyPressEvent(QKeyEvent* event) override;
};

// Makes its pictures again when the image, its channels or the selection have changed, a moment
// later and only while it is to be seen. While styles are tried one after the other they stay
// pictures of the image without any.
class StylePanel : public QDockWidget {
  Q_OBJECT

public:
  StylePanel(const EditorDocument& document, QWidget* parent);

  StyleList& list() { return *_list; }
  // All pictures are made, of the present image, or of the one that the present style was tried on.
  bool isUpToDate() const;
  // The image is the one of the pictures in a style that was chosen here: it can be undone for
  // another one.
  bool isTried() const { return _document.position() == _tried; }
  void noteTried() { _tried = _document.position(); }

Q_SIGNALS:
  void chosen(const LM_style& style);

protected:
  void showEvent(QShowEvent* event) override;

private:
  bool _isPictured() const;
  void _refresh();
  void _readStyles();
  void _setPicture(int row, const QImage& picture);

  const EditorDocument& _document;
  StyleList* _list;
  StyleThumbnails* _thumbnails;
  QTimer _delay;
  std::vector<LM_style> _styles; // a row each
  static constexpr int NEVER = -1;
  int _pictured = NEVER; // the position in the document's history that the pictures are of
  int _tried = NEVER;    // the one after it, where a style was chosen
  bool _areMade = false;
};

} // namespace editor
