// Dragging a light, or one of its handles, until the mouse button is released. Meanwhile the light
// is drawn in exclusive-or; no such figure is left behind at the end.
#include <algorithm>

#include "Events.h"
#include "LM_alerts.h"
#include "LM_arithmetic.h"
#include "LM_globals.h"
#include "LM_item_drawing.h"
#include "LM_light_UI_mac.h"
#include "LM_mac_UI.h"

namespace {

int16_t Clamp(int16_t value, int16_t first, int16_t end) {
  return static_cast<int16_t>(std::clamp<int>(value, first, end - 1));
}

LM_drag_constraint ConstraintOf(bool keepDirection, bool keepLength) {
  return keepDirection ? LM_drag_constraint::KeepDirection
         : keepLength  ? LM_drag_constraint::KeepLength
                       : LM_drag_constraint::None;
}

LM_drag_constraint ConstraintByKeys() {
  KeyMap keys;
  GetKeys(keys);
  return ConstraintOf(KeyIsDown(keys, kShiftKeyCode), KeyIsDown(keys, kCommandKeyCode));
}

// The figure of a light that is being moved, over the preview and the trash.
class FigureDrag {
public:
  FigureDrag(LM_light_UI& light, DialogPtr dialog, LM_globals* owner)
      : _light(light), _dialog(dialog), _owner(owner),
        _preview(LM_ItemGetBox(dialog, LM_WORK_AREA_ITEM)),
        _trash(LM_ItemGetBox(dialog, LM_TRASH_ITEM)), _clip(_preview) {}

  void Follow(Point mouse) {
    _SetOverTrash(PtInRect(mouse, &_trash) != 0);
    if (_overTrash)
      return;
    if (PtInRect(mouse, &_preview))
      _MoveTo(mouse);
    else
      _SetShown(true);
  }

  // Erases the figure and gives the whole dialog back to drawing.
  void End() {
    _SetShown(false);
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
  void _SetShown(bool shown) {
    if (_shown != shown)
      _light._DrawXORActive(1, 0, _owner);
    _shown = shown;
  }
  void _SetOverTrash(bool over) {
    if (_overTrash == over)
      return;
    if (over)
      _SetShown(false);
    _overTrash = over;
    _clip.Open();
    (over ? LM_DrawInverseTrash : LM_DrawTrash)(_dialog, LM_TRASH_ITEM);
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
  LM_drag_constraint lastConstraint = LM_drag_constraint::None;
  bool moved = false;
  const auto follow = [&] {
    Point mouse;
    GetMouse(&mouse);
    mouse.h = Clamp(mouse.h, preview.left, preview.right);
    mouse.v = Clamp(mouse.v, preview.top, preview.bottom);
    const LM_drag_constraint constraint = ConstraintByKeys();
    // The shape follows from the start and these alone, so a still mouse needs no work.
    if (moved && EqualPt(mouse, last) && constraint == lastConstraint)
      return;
    _SetNewHandlePosition(mouse.h, mouse.v, owner, preview, handleCode, start1, start2,
                          constraint == LM_drag_constraint::KeepDirection,
                          constraint == LM_drag_constraint::KeepLength);
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
  LM_light_figure start = LM_ScreenFigure(*this);
  start.handle1 = startHandle1.Floats();
  start.handle2 = startHandle2.Floats();
  const LM_light_figure shape =
      LM_ReshapeLight(start, handleCode, LM_FloatsOf({v, h}),
                      ConstraintOf(keepDirection != 0, keepLength != 0), LM_handle_grid::Whole);
  const bool isGrabHandle =
      handleCode >= LM_HANDLE_FIRST_BACK && handleCode <= LM_HANDLE_SECOND_END;
  if (type == LM_LIGHT_OMNI)
    radius = static_cast<int16_t>(shape.radius);
  if (type == LM_LIGHT_DIRECTIONAL || (type == LM_LIGHT_SPOT && isGrabHandle))
    handle1 = LM_WholeVector(shape.handle1);
  if (type == LM_LIGHT_SPOT && isGrabHandle)
    handle2 = LM_WholeVector(shape.handle2);
  InvalidateCaches();
  _DrawXORActive(0, 0, owner);
}
