#include "LightsModel.h"

#include "ColorChoice.h"
#include "EditorRecipe.h"

#include "LM_handles.h"
#include "LM_light_kinds.h"
#include "LM_preview_geometry.h"
#include "LM_style_fields.h"
#include "LM_style_json.h"
#include "LM_style_lighting.h"

#include <algorithm>

namespace editor {
namespace {

constexpr int MOMENT = 500; // in milliseconds: between two turns of a wheel, or two keys
constexpr float COPY_OFFSET = 8;

bool IsSame(const LM_style& a, const LM_style& b) {
  return LM_StyleToJson(a) == LM_StyleToJson(b);
}

} // namespace

void SetFigure(LM_style_light& light, const LM_light_figure& figure) {
  light.center = figure.center;
  light.handle1 = figure.handle1;
  light.handle2 = figure.handle2;
  light.radius = figure.radius;
}

LM_style_light NewLightAt(LM_vector2f place) {
  LM_style_light light = LM_NewStyleLight();
  light.center = place;
  return light;
}

QString KindName(uint16_t code) {
  switch (LM_LightKindOfCode(code).type) {
  case LM_LIGHT_DIRECTIONAL:
    return LightsModel::tr("Directional light");
  case LM_LIGHT_OMNI:
    return LightsModel::tr("Omni light");
  default:
    return LightsModel::tr("Spotlight");
  }
}

LightsModel::LightsModel(QObject* parent)
    : QObject(parent), _kept(InWorldUnit(LM_NewStyle())), _style(_kept) {
  _soon.setSingleShot(true);
  _soon.setInterval(MOMENT);
  connect(&_soon, &QTimer::timeout, this, [this] { keep(_soonStep); });
}

LM_light_figure LightsModel::figure(int index) const {
  return LM_FigureOf(light(index));
}

std::vector<LM_light_figure> LightsModel::figures() const {
  std::vector<LM_light_figure> all;
  all.reserve(static_cast<size_t>(count()));
  for (int i = 0; i < count(); ++i)
    all.push_back(figure(i));
  return all;
}

void LightsModel::select(int index) {
  index = std::clamp(index, -1, count() - 1);
  if (index < 0 || index == _selected)
    return;
  flush();
  _selected = index;
  _kept.curLight = _style.curLight = static_cast<uint16_t>(index);
  Q_EMIT changed();
}

// Shading has a length of 1 at so many pixels of the area, whose middle is its origin.
void LightsModel::setArea(const QRect& area) {
  _area = area;
  const double length = LM_FitPreviewInFrame(area.width(), area.height()).width;
  _pixelsPerLength = std::max(_area.width(), 1.0) / length;
  Q_EMIT changed();
}

void LightsModel::setToScreen(const QColorTransform& toScreen) {
  _toScreen = toScreen;
  Q_EMIT changed();
}

QColor LightsModel::shownColor(int light) const {
  return _toScreen.map(ColorOf(_style.lights[light].color));
}

QPointF LightsModel::toImage(LM_vector2f place) const {
  return _area.center() + QPointF(place.x, place.y) * _pixelsPerLength;
}

LM_vector2f LightsModel::toPlace(QPointF imagePoint) const {
  const QPointF place = (imagePoint - _area.center()) / _pixelsPerLength;
  return {LM_OnGrid(static_cast<float>(place.x()), LM_handle_grid::Fractions),
          LM_OnGrid(static_cast<float>(place.y()), LM_handle_grid::Fractions)};
}

void LightsModel::tryEdit(const Edit& edit) {
  flush();
  _try(edit);
}

void LightsModel::_try(const Edit& edit) {
  edit(_style);
  _isTrying = true;
  Q_EMIT tried(_style);
  Q_EMIT changed();
}

void LightsModel::keep(const QString& step) {
  _soon.stop();
  if (!_isTrying)
    return;
  if (IsSame(_style, _kept))
    return giveUp();
  _isTrying = false;
  _style.curLight = static_cast<uint16_t>(std::max(_selected, 0));
  _kept = _style;
  // By value: who keeps it may hand another one in.
  const LM_style style = _kept;
  Q_EMIT kept(style, step);
  Q_EMIT changed();
}

void LightsModel::changeSoon(const Edit& edit, const QString& step) {
  if (step != _soonStep)
    flush();
  _try(edit);
  _soonStep = step;
  _soon.start();
}

void LightsModel::flush() {
  if (_soon.isActive())
    keep(_soonStep);
}

void LightsModel::giveUp() {
  _soon.stop();
  if (!_isTrying)
    return;
  _isTrying = false;
  _style = _kept;
  _selected = std::min<int>(_style.curLight, count() - 1);
  Q_EMIT gaveUp();
  Q_EMIT changed();
}

void LightsModel::change(const Edit& edit, const QString& step) {
  flush();
  edit(_style);
  _isTrying = true;
  keep(step);
}

void LightsModel::chooseRelief(const LM_height_source& relief, int16_t channel) {
  flush();
  _relief = relief;
  _style.bumpChannel = _kept.bumpChannel = channel;
  const LM_style style = _kept;
  Q_EMIT kept(style, tr("Relief"));
  Q_EMIT changed();
}

bool LightsModel::tryAdding(const LM_style_light& light) {
  flush();
  if (count() >= LM_MAX_LIGHTS) {
    Q_EMIT refused(tr("A picture can have sixteen lights and no more."));
    return false;
  }
  _selected = count();
  tryEdit([&](LM_style& style) {
    style.lights[style.lightsRead] = light;
    style.numLights = ++style.lightsRead;
  });
  return true;
}

bool LightsModel::add(LM_vector2f place) {
  if (!tryAdding(NewLightAt(place)))
    return false;
  keep(tr("Add Light"));
  return true;
}

bool LightsModel::duplicate() {
  if (!_hasSelected())
    return false;
  LM_style_light copy = light(_selected);
  copy.center = {copy.center.x + COPY_OFFSET, copy.center.y + COPY_OFFSET};
  if (!tryAdding(copy))
    return false;
  keep(tr("Copy Light"));
  return true;
}

void LightsModel::remove() {
  if (!_hasSelected())
    return;
  if (count() == 1) {
    Q_EMIT refused(tr("The last light stays. It can be switched off, or the lighting undone."));
    return;
  }
  flush();
  const int gone = _selected;
  _selected = std::min(gone, count() - 2);
  change(
      [gone](LM_style& style) {
        std::copy(style.lights + gone + 1, style.lights + style.lightsRead, style.lights + gone);
        style.numLights = --style.lightsRead;
      },
      tr("Delete Light"));
}

void LightsModel::mirror() {
  if (!_hasSelected())
    return;
  change(
      [this](LM_style& style) {
        LM_style_light& light = _current(style);
        for (LM_vector2f* vector : {&light.center, &light.handle1, &light.handle2})
          vector->x = 0.0F - vector->x;
      },
      tr("Mirror Light"));
}

void LightsModel::solo() {
  if (!_hasSelected())
    return;
  std::vector<uint16_t> on;
  bool isAlone = true;
  for (int i = 0; i < count(); ++i) {
    on.push_back(light(i).on);
    isAlone = isAlone && (light(i).on == 1) == (i == _selected);
  }
  const bool returns = isAlone && _onBeforeSolo.size() == on.size();
  change(
      [&](LM_style& style) {
        for (int i = 0; i < style.lightsRead; ++i)
          style.lights[i].on = returns   ? _onBeforeSolo[static_cast<size_t>(i)]
                               : isAlone ? uint16_t{1}
                                         : uint16_t{i == _selected};
      },
      tr("Solo Light"));
  _onBeforeSolo = returns || isAlone ? std::vector<uint16_t>() : on;
}

void LightsModel::setOn(int index, bool on) {
  change([&](LM_style& style) { style.lights[index].on = on ? 1 : 0; }, tr("Switch Light"));
}

void LightsModel::setType(uint16_t code) {
  if (!_hasSelected())
    return;
  change(
      [&](LM_style& style) {
        LM_style_light& light = _current(style);
        light.type = code;
        const auto type = LM_LightKindOfCode(code).type;
        if (type == LM_LIGHT_SPOT)
          light.handle2 = LM_SecondAxis(light.handle1, light.handle2, LM_handle_grid::Fractions);
        if (type == LM_LIGHT_OMNI)
          light.radius = std::max(light.radius, 1.0F);
      },
      tr("Kind of Light"));
}

void LightsModel::moveTo(int from, int to) {
  if (from < 0 || to < 0 || from >= count() || to >= count() || from == to)
    return;
  flush();
  _selected = to;
  change(
      [&](LM_style& style) {
        LM_style_light* lights = style.lights;
        if (from < to)
          std::rotate(lights + from, lights + from + 1, lights + to + 1);
        else
          std::rotate(lights + to, lights + from, lights + from + 1);
      },
      tr("Order of Lights"));
}

QString LightsModel::json() const {
  if (!_hasSelected())
    return {};
  LM_style style = _style;
  style.lights[0] = light(_selected);
  style.numLights = style.lightsRead = 1;
  style.curLight = 0;
  return QString::fromStdString(LM_StyleToJson(style));
}

bool LightsModel::paste(const QString& json) {
  LM_style pasted = {};
  std::string why;
  if (!LM_StyleFromJson(json.toStdString(), pasted, why)) {
    Q_EMIT refused(tr("What was copied is no light."));
    return false;
  }
  pasted = InWorldUnit(pasted);
  flush();
  if (count() + pasted.lightsRead > LM_MAX_LIGHTS) {
    Q_EMIT refused(tr("A picture can have sixteen lights and no more."));
    return false;
  }
  const int first = count();
  _selected = first + pasted.lightsRead - 1;
  change(
      [&](LM_style& style) {
        std::copy_n(pasted.lights, pasted.lightsRead, style.lights + first);
        style.numLights = style.lightsRead =
            static_cast<uint16_t>(style.lightsRead + pasted.lightsRead);
      },
      tr("Paste Light"));
  return true;
}

void LightsModel::setStyle(const LM_style& style) {
  _soon.stop();
  _isTrying = false;
  _kept = _style = InWorldUnit(style);
  _selected = std::min<int>(_style.curLight, count() - 1);
  Q_EMIT changed();
}

void LightsModel::setRelief(const LM_height_source& relief) {
  _relief = relief;
  Q_EMIT changed();
}

void LightsModel::setChannels(const QStringList& names) {
  _channels = names;
  Q_EMIT changed();
}

} // namespace editor
