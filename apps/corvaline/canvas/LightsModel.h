// The lights of the picture while they are edited.
#pragma once

#include "LM_height_source.h"
#include "LM_light_figure.h"
#include "LM_style.h"

#include <QColor>
#include <QColorTransform>
#include <QObject>
#include <QPointF>
#include <QRect>
#include <QStringList>
#include <QTimer>

#include <functional>
#include <vector>

namespace editor {

// A style that is kept, and beside it what is tried at the moment. It knows no document: who keeps
// what is kept listens, and hands in what undoing brings back. Lengths are in the world unit of the
// editor's pictures, from the middle of the area that is lit.
class LightsModel : public QObject {
  Q_OBJECT

public:
  explicit LightsModel(QObject* parent = nullptr);

  // What is to be seen. Without lights: the picture is not lit.
  const LM_style& style() const { return _style; }
  // Where its heights come from; part of what kept() asks to keep.
  const LM_height_source& relief() const { return _relief; }
  int count() const { return _style.lightsRead; }
  const LM_style_light& light(int index) const { return _style.lights[index]; }
  LM_light_figure figure(int index) const;
  std::vector<LM_light_figure> figures() const;
  bool isTrying() const { return _isTrying; }

  int selected() const { return _selected; } // -1 without lights
  void select(int index);

  // The part of the picture that is lit, in its pixels, and the places in it.
  void setArea(const QRect& area);
  QPointF toImage(LM_vector2f place) const;
  LM_vector2f toPlace(QPointF imagePoint) const;
  // What colours of the picture look like.
  void setToScreen(const QColorTransform& toScreen);
  QColor shownColor(int light) const;
  double pixelsPerLength() const { return _pixelsPerLength; }
  const QStringList& channels() const { return _channels; }

  // Edits what is to be seen, without keeping it: until keep or giveUp. step: as undoing names it.
  using Edit = std::function<void(LM_style&)>;
  void tryEdit(const Edit& edit);
  void keep(const QString& step);
  void giveUp();
  // Edits and keeps: at once, or as one step with those that follow within a moment.
  void change(const Edit& edit, const QString& step);
  void changeSoon(const Edit& edit, const QString& step);
  // Keeps now what would be kept soon. Due before the document goes back, saves or closes.
  void flush();
  void chooseRelief(const LM_height_source& relief, int16_t channel);

  // Each of these is one step. Adding answers whether there was room.
  bool tryAdding(const LM_style_light& light); // selects it; not kept yet
  bool add(LM_vector2f place);
  bool duplicate();
  void remove();
  void mirror(); // left becomes right
  void solo();   // all others off; once more, and they are as before
  void setOn(int index, bool on);
  void setType(uint16_t code);
  void moveTo(int from, int to); // in the list
  // A style with that light alone, and the lights of any style, as JSON.
  QString json() const;
  bool paste(const QString& json);

public Q_SLOTS:
  // What the document holds now; ends what is tried.
  void setStyle(const LM_style& style);
  void setRelief(const LM_height_source& relief);
  void setChannels(const QStringList& names);

Q_SIGNALS:
  void tried(const LM_style& style);
  void gaveUp();
  void kept(const LM_style& style, const QString& step);
  void changed();
  // A sentence why nothing was done.
  void refused(const QString& why);

private:
  void _try(const Edit& edit);
  bool _hasSelected() const { return _selected >= 0; }
  LM_style_light& _current(LM_style& style) const { return style.lights[_selected]; }

  LM_style _kept, _style;
  LM_height_source _relief;
  bool _isTrying = false;
  int _selected = -1;
  std::vector<uint16_t> _onBeforeSolo;
  QRectF _area{0, 0, 1, 1};
  double _pixelsPerLength = 1;
  QColorTransform _toScreen;
  QStringList _channels;
  QTimer _soon;
  QString _soonStep;
};

// A light as new ones are, at that place.
LM_style_light NewLightAt(LM_vector2f place);
// Gives the light the figure's place and shape.
void SetFigure(LM_style_light& light, const LM_light_figure& figure);

// "Spotlight" and the like, as the dialog names the kinds.
QString KindName(uint16_t code);

} // namespace editor
