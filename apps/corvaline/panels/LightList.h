// The lights of the picture by name.
#pragma once

#include "LightsModel.h"

#include <QAction>
#include <QListWidget>

namespace editor {

// Each light with its colour, its kind and its switch. Dragging one changes the order. The actions
// are those of the selected light.
class LightList : public QListWidget {
  Q_OBJECT

public:
  LightList(LightsModel& model, QWidget* parent);

  QSize sizeHint() const override;

private:
  template <typename Slot>
  void _add(const QString& icon, const QString& text, const QKeySequence& key, const QString& tip,
            Slot slot);
  void _show();

  LightsModel& _model;
};

} // namespace editor
