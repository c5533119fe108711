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

// Makes its pictures again when the image, its channels or the selected area have changed, a moment
// later and only while it is to be seen.
class StylePanel : public QDockWidget {
  Q_OBJECT

public:
  StylePanel(const EditorDocument& document, QWidget* parent);

  StyleList& list() { return *_list; }
  // The pictures are those of the present image.
  bool isUpToDate() const { return _upToDate; }

Q_SIGNALS:
  void chosen(const LM_style& style);

protected:
  void showEvent(QShowEvent* event) override;

private:
  void _refreshSoon();
  void _refresh();
  void _readStyles();
  void _setPicture(int row, const QImage& picture);

  const EditorDocument& _document;
  StyleList* _list;
  StyleThumbnails* _thumbnails;
  QTimer _delay;
  std::vector<LM_style> _styles; // a row each
  bool _upToDate = false;
};

} // namespace editor
