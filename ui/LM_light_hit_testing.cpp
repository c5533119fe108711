// Where the handles of a light are, and which of them lies under a click.
#include "LM_arithmetic.h"
#include "LM_light_UI_mac.h"

namespace {

// The square just beyond `reach` below and to the right of the middle ends the box.
Rect HandleBox(Point middle, int reach) {
  return {LM_Saturate16(middle.v - reach), LM_Saturate16(middle.h - reach),
          LM_Saturate16(middle.v + reach + 1), LM_Saturate16(middle.h + reach + 1)};
}

void Add(LM_grab_handles& grab, short code, Point place) {
  grab.handles[grab.count++] = {code, place};
}

void AddOmniHandles(LM_grab_handles& grab, Point center, int radius, int endInset) {
  Add(grab, LM_HANDLE_FIRST_BACK, LM_PlaceAt(center, -radius, 0));
  Add(grab, LM_HANDLE_FIRST_END, LM_PlaceAt(center, radius - endInset, 0));
  Add(grab, LM_HANDLE_SECOND_BACK, LM_PlaceAt(center, 0, -radius));
  Add(grab, LM_HANDLE_SECOND_END, LM_PlaceAt(center, 0, radius - endInset));
}

void AddSpotHandles(LM_grab_handles& grab, Point center, const LM_light_UI& light) {
  const LM_vectori2& first = light.handle1;
  const LM_vectori2& second = light.handle2;
  Add(grab, LM_HANDLE_FIRST_BACK, LM_PlaceAt(center, -first.h, -first.v));
  Add(grab, LM_HANDLE_FIRST_END, LM_PlaceAt(center, first.h, first.v));
  Add(grab, LM_HANDLE_SECOND_BACK, LM_PlaceAt(center, -second.h, -second.v));
  Add(grab, LM_HANDLE_SECOND_END, LM_PlaceAt(center, second.h, second.v));
}

short HitGrabHandles(const LM_light_UI& light, Point point, RgnHandle scratch) {
  const LM_grab_handles grab = LM_GrabHandlesOf(light, 0);
  for (int i = 0; i < grab.count; ++i) {
    const Rect box = LM_GrabHandleBox(grab.handles[i].place);
    OpenRgn();
    FrameRect(&box);
    CloseRgn(scratch);
    if (PtInRgn(point, scratch))
      return grab.handles[i].code;
  }
  return LM_HANDLE_NONE;
}

} // namespace

LM_grab_handles LM_GrabHandlesOf(const LM_light_UI& light, int endInset) {
  LM_grab_handles grab;
  const Point center = LM_ScreenCenter(light);
  if (light.type == LM_LIGHT_DIRECTIONAL)
    Add(grab, LM_HANDLE_FIRST_BACK, LM_PlaceAt(center, light.handle1.h, light.handle1.v));
  else if (light.type == LM_LIGHT_OMNI)
    AddOmniHandles(grab, center, light.radius, endInset);
  else if (light.type == LM_LIGHT_SPOT)
    AddSpotHandles(grab, center, light);
  return grab;
}

Point LM_PlaceAt(Point from, int dh, int dv) {
  return {LM_Saturate16(from.v + dv), LM_Saturate16(from.h + dh)};
}

Point LM_ScreenCenter(const LM_light_UI& light) {
  return LM_PlaceAt({light.anchor.v, light.anchor.h}, light.center.h, light.center.v);
}

Rect LM_CenterHandleBox(Point center) {
  return HandleBox(center, 3);
}

Rect LM_GrabHandleBox(Point place) {
  return HandleBox(place, 2);
}

Rect LM_OmniBox(const LM_light_UI& light) {
  const Point center = LM_ScreenCenter(light);
  const Point topLeft = LM_PlaceAt(center, -light.radius, -light.radius);
  const Point bottomRight = LM_PlaceAt(center, light.radius, light.radius);
  return {topLeft.v, topLeft.h, bottomRight.v, bottomRight.h};
}

short LM_light_UI::HitTest(Point point, LM_bool active) {
  RgnHandle scratch = NewRgn();
  short code = LM_HANDLE_NONE;
  if (active == 1) {
    if (type == LM_LIGHT_DIRECTIONAL)
      code = _HitTestDirectionalGrabHandles(point, scratch);
    else if (type == LM_LIGHT_OMNI)
      code = _HitTestOmniGrabHandles(point, scratch);
    else if (type == LM_LIGHT_SPOT)
      code = _HitTestSpotGrabHandles(point, scratch);
  }
  if (code == LM_HANDLE_NONE) {
    const Rect box = LM_CenterHandleBox(LM_ScreenCenter(*this));
    OpenRgn();
    FrameOval(&box);
    CloseRgn(scratch);
    if (PtInRgn(point, scratch))
      code = LM_HANDLE_CENTER;
  }
  DisposeRgn(scratch);
  return code;
}

short LM_light_UI::_HitTestDirectionalGrabHandles(Point point, MacRegion** scratch) {
  return HitGrabHandles(*this, point, scratch);
}

short LM_light_UI::_HitTestOmniGrabHandles(Point point, MacRegion** scratch) {
  return HitGrabHandles(*this, point, scratch);
}

short LM_light_UI::_HitTestSpotGrabHandles(Point point, MacRegion** scratch) {
  return HitGrabHandles(*this, point, scratch);
}
