// Dragging a light, or one of its handles, until the mouse button is released. Meanwhile the light
// is drawn in exclusive-or; no such figure is left behind at the end.
#include "Events.h"
#include "LM_alerts.h"
#include "LM_arithmetic.h"
#include "LM_globals.h"
#include "LM_item_drawing.h"
#include "LM_light_UI_mac.h"
#include "LM_mac_UI.h"

namespace {

enum class Constraint { None, KeepDirection, KeepLength };

LM_vectori2 VectorBetween(Point from, Point to) {
  return {LM_Saturate16(to.h - from.h), LM_Saturate16(to.v - from.v)};
}

int16_t Truncate16(float value) {
  return LM_Saturate16(LM_Truncate(value));
}

// A handle dragged to `offset` from the light's centre.
LM_vectori2 Constrained(const LM_vectori2& offset, const LM_vectori2& start,
                        Constraint constraint) {
  const float length = offset.Magnitude();
  const float startLength = start.Magnitude();
  if (constraint == Constraint::KeepDirection) {
    const float ratio = length / startLength;
    return {Truncate16(static_cast<float>(start.h) * ratio),
            Truncate16(static_cast<float>(start.v) * ratio)};
  }
  if (constraint == Constraint::KeepLength) {
    // The products are cut to whole numbers before they are divided; those of long handles are
    // longer than a coordinate.
    const auto component = [&](int16_t value) {
      const int32_t product = LM_Truncate(static_cast<float>(value) * startLength);
      return Truncate16(static_cast<float>(product) / length);
    };
    return {component(offset.h), component(offset.v)};
  }
  return offset;
}

int16_t OmniRadius(Point center, Point mouse, short handleCode, int16_t radius) {
  switch (handleCode) {
  case LM_HANDLE_FIRST_BACK:
    return LM_Saturate16(center.h - mouse.h);
  case LM_HANDLE_SECOND_BACK:
    return LM_Saturate16(center.v - mouse.v);
  case LM_HANDLE_FIRST_END:
    return LM_Saturate16(mouse.h - center.h);
  case LM_HANDLE_SECOND_END:
    return LM_Saturate16(mouse.v - center.v);
  default:
    return radius;
  }
}

int16_t Clamp(int16_t value, int16_t first, int16_t end) {
  if (value >= end)
    value = static_cast<int16_t>(end - 1);
  return value < first ? first : value;
}

Constraint ConstraintByKeys() {
  KeyMap keys;
  GetKeys(keys);
  if (KeyIsDown(keys, kShiftKeyCode))
    return Constraint::KeepDirection;
  return KeyIsDown(keys, kCommandKeyCode) ? Constraint::KeepLength : Constraint::None;
}

// The figure of a light that is being moved, over the preview and the trash.
class FigureDrag {
public:
  FigureDrag(LM_light_UI& light, DialogPtr dialog, LM_globals* owner)
      : _light(light), _dialog(dialog), _owner(owner),
        _preview(LM_ItemGetBox(dialog, LM_WORK_AREA_ITEM)),
        _trash(LM_ItemGetBox(dialog, LM_TRASH_ITEM)), _clip(_preview) {}

  void Follow(Point mouse) {
    if (PtInRect(mouse, &_trash))
      return _EnterTrash();
    _LeaveTrash();
    if (PtInRect(mouse, &_preview))
      _MoveTo(mouse);
    else
      _Show();
  }

  // Erases the figure and gives the whole dialog back to drawing.
  void End() {
    _Hide();
    _clip.Open();
  }
  bool OverTrash() const { return _overTrash; }

private:
  void _MoveTo(Point mouse) {
    if (_moved && _shown && EqualPt(mouse, _place))
      return;
    _light._SetNewPosition(mouse.h, mouse.v, _owner, _shown ? 1 : 0);
    _shown = true;
    _moved = true;
    _place = mouse;
  }
  void _Show() {
    if (!_shown)
      _light._DrawXORActive(1, 0, _owner);
    _shown = true;
  }
  void _Hide() {
    if (_shown)
      _light._DrawXORActive(1, 0, _owner);
    _shown = false;
  }
  void _EnterTrash() {
    if (_overTrash)
      return;
    _Hide();
    _overTrash = true;
    _clip.Open();
    LM_DrawInverseTrash(_dialog, LM_TRASH_ITEM);
    _clip.Narrow();
  }
  void _LeaveTrash() {
    if (!_overTrash)
      return;
    _overTrash = false;
    _clip.Open();
    LM_DrawTrash(_dialog, LM_TRASH_ITEM);
    _clip.Narrow();
  }

  LM_light_UI& _light;
  DialogPtr _dialog;
  LM_globals* _owner;
  Rect _preview;
  Rect _trash;
  LM_clip_scope _clip;
  Point _place{};
  bool _moved = false;
  bool _shown = false;
  bool _overTrash = false;
};

} // namespace

void LM_light_UI::_SetNewPosition(short h, short v, LM_globals* owner, LM_bool erase) {
  if (erase == 1)
    _DrawXORActive(1, 0, owner);
  center = {LM_Saturate16(h - anchor.h), LM_Saturate16(v - anchor.v)};
  InvalidateCaches();
  _DrawXORActive(1, 0, owner);
}

void LM_light_UI::MoveUI(GrafPort* dialog, LM_globals* owner) {
  const LM_port_scope port(dialog);
  FigureDrag drag(*this, dialog, owner);
  Point mouse;
  do {
    GetMouse(&mouse);
    drag.Follow(mouse);
  } while (StillDown());
  GetMouse(&mouse);
  drag.Follow(mouse);
  drag.End();
  if (!drag.OverTrash())
    return;
  // The light itself stays where it was when the mouse went to the trash.
  if (owner->DeleteCurrentLight()) {
    LM_SetCurLightToDialog(dialog, owner);
    LM_ItemForceDraw(dialog, LM_LIGHT_WELL_ITEM);
  } else {
    LM_ShowTooFewLightsError();
  }
  LM_DrawTrash(dialog, LM_TRASH_ITEM);
}

void LM_light_UI::DragGrabHandle(GrafPort* dialog, LM_globals* owner, short handleCode) {
  const LM_port_scope port(dialog);
  Rect preview = LM_ItemGetBox(dialog, LM_WORK_AREA_ITEM);
  InsetRect(&preview, 1, 1);
  if (EmptyRect(&preview))
    return;
  const LM_clip_scope clip(preview);
  LM_vectori2 start1 = handle1;
  LM_vectori2 start2 = handle2;
  Point last{};
  Constraint lastConstraint = Constraint::None;
  bool moved = false;
  const auto follow = [&] {
    Point mouse;
    GetMouse(&mouse);
    mouse.h = Clamp(mouse.h, preview.left, preview.right);
    mouse.v = Clamp(mouse.v, preview.top, preview.bottom);
    const Constraint constraint = ConstraintByKeys();
    // The shape follows from the start and these alone, so a still mouse needs no work.
    if (moved && EqualPt(mouse, last) && constraint == lastConstraint)
      return;
    _SetNewHandlePosition(mouse.h, mouse.v, owner, preview, handleCode, start1, start2,
                          constraint == Constraint::KeepDirection,
                          constraint == Constraint::KeepLength);
    last = mouse;
    lastConstraint = constraint;
    moved = true;
  };
  _DrawXORActive(0, 0, owner);
  do
    follow();
  while (StillDown());
  follow();
  _DrawXORActive(0, 0, owner);
}

void LM_light_UI::_SetNewHandlePosition(short h, short v, LM_globals* owner, Rect&,
                                        short handleCode, LM_vectori2& startHandle1,
                                        LM_vectori2& startHandle2, LM_bool keepDirection,
                                        LM_bool keepLength) {
  _DrawXORActive(0, 0, owner);
  const Point middle = LM_ScreenCenter(*this);
  const Point mouse = {v, h};
  const Constraint constraint = keepDirection != 0 ? Constraint::KeepDirection
                                : keepLength != 0  ? Constraint::KeepLength
                                                   : Constraint::None;
  if (type == LM_LIGHT_DIRECTIONAL) {
    handle1 = Constrained(VectorBetween(middle, mouse), startHandle1, constraint);
    InvalidateCaches();
  } else if (type == LM_LIGHT_OMNI) {
    radius = OmniRadius(middle, mouse, handleCode, radius);
    InvalidateCaches();
    if (radius < 1)
      radius = 1;
  } else if (type == LM_LIGHT_SPOT) {
    const bool back = handleCode == LM_HANDLE_FIRST_BACK || handleCode == LM_HANDLE_SECOND_BACK;
    const bool second = handleCode == LM_HANDLE_SECOND_BACK || handleCode == LM_HANDLE_SECOND_END;
    const LM_vectori2 offset = back ? VectorBetween(mouse, middle) : VectorBetween(middle, mouse);
    _ReshapeSpot(Constrained(offset, second ? startHandle2 : startHandle1, constraint), handleCode,
                 startHandle1, startHandle2);
  }
  _DrawXORActive(0, 0, owner);
}

// Sets the axis that the handle belongs to, and turns the other one to stand on it. The first axis
// stays the longer one, whichever is dragged.
void LM_light_UI::_ReshapeSpot(const LM_vectori2& dragged, short handleCode,
                               const LM_vectori2& startHandle1, const LM_vectori2& startHandle2) {
  switch (handleCode) {
  case LM_HANDLE_FIRST_BACK:
  case LM_HANDLE_FIRST_END: {
    handle1 = dragged;
    float ratio = startHandle2.Magnitude() / handle1.Magnitude();
    if (ratio >= 1.0F)
      ratio = 1.0F;
    handle2 = handle1.QuarterTurn(ratio);
    break;
  }
  case LM_HANDLE_SECOND_BACK:
  case LM_HANDLE_SECOND_END: {
    handle2 = dragged;
    handle1 = startHandle1;
    // An axis without length has no direction that the other one could stand on.
    if (handle2 == LM_vectori2{0, 0})
      break;
    float ratio = handle1.Magnitude() / handle2.Magnitude();
    if (ratio < 1.0F)
      ratio = 1.0F;
    handle1 = handle2.QuarterTurnBack(ratio);
    break;
  }
  default:
    break;
  }
  InvalidateCaches();
}
