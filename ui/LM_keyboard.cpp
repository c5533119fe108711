// Lights without a mouse: keys that stand for drags on the preview.
#include "LM_keyboard.h"

#include "LM_light_UI_mac.h"
#include "LM_mac_UI.h"

namespace {

constexpr int STEP = 1; // preview pixels
constexpr int LONG_STEP = 10;

struct Offset {
  int h = 0;
  int v = 0;
};

Offset OffsetOf(const EventRecord& event) {
  const int step = (event.modifiers & shiftKey) != 0 ? LONG_STEP : STEP;
  switch ((event.message & keyCodeMask) >> 8) {
  case kLeftArrowKeyCode:
    return {-step, 0};
  case kRightArrowKeyCode:
    return {step, 0};
  case kUpArrowKeyCode:
    return {0, -step};
  case kDownArrowKeyCode:
    return {0, step};
  default:
    return {};
  }
}

// What the keys held with the arrow take hold of.
Point GripOf(const LM_light_UI& light, const EventRecord& event) {
  const LM_grab_handles grab = LM_GrabHandlesOf(LM_ScreenFigure(light), LM_handle_grid::Whole);
  const bool second = (event.modifiers & cmdKey) != 0;
  if (!second && (event.modifiers & optionKey) == 0)
    return LM_ScreenCenter(light);
  const short wanted = second ? LM_HANDLE_SECOND_END : LM_HANDLE_FIRST_END;
  for (int i = 0; i < grab.count; ++i) {
    if (grab.handles[i].code == wanted)
      return LM_PointOf(grab.handles[i].place);
  }
  return grab.count > 0 ? LM_PointOf(grab.handles[0].place) : LM_ScreenCenter(light);
}

} // namespace

void LM_DragByKey(DialogPtr dialog, LM_globals* globals, const EventRecord& event) {
  if (event.what != keyDown && event.what != autoKey)
    return;
  const Offset offset = OffsetOf(event);
  const Rect workArea = LM_ItemGetBox(dialog, LM_WORK_AREA_ITEM);
  const Point grip = GripOf(globals->CurrentLight(), event);
  if ((offset.h == 0 && offset.v == 0) || PtInRect(grip, &workArea) == 0)
    return;
  TB_PostDrag(dialog, grip, LM_PlaceAt(grip, offset.h, offset.v));
}

void LM_PullLightByKey(DialogPtr dialog, int16_t well, LM_globals*) {
  const auto middleOf = [&](int16_t item) {
    const Rect box = LM_ItemGetBox(dialog, item);
    return Point{static_cast<int16_t>((box.top + box.bottom) / 2),
                 static_cast<int16_t>((box.left + box.right) / 2)};
  };
  TB_PostDrag(dialog, middleOf(well), middleOf(LM_WORK_AREA_ITEM));
}
