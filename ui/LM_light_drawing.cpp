// The figures of lights, drawn for good and in exclusive-or.
#include <algorithm>

#include "LM_arithmetic.h"
#include "LM_globals.h"
#include "LM_light_UI_mac.h"

namespace {

constexpr RGBColor MID_GREY = {32768, 32768, 32768};

void SetOutlinePen() {
  PenNormal();
  LM_SetAddOverMode();
  RGBForeColor(&MID_GREY);
}

void SetHandlePen() {
  RGBForeColor(&LM_BLACK);
  PenMode(srcCopy);
}

void DrawHandleLine(const LM_light_UI& light) {
  const Point from = LM_ScreenCenter(light);
  const Point to = LM_PlaceAt(from, light.handle1.h, light.handle1.v);
  MoveTo(from.h, from.v);
  LineTo(to.h, to.v);
}

// An omni's right and bottom handles are drawn inside its circle.
LM_grab_handles DrawnHandles(const LM_light_UI& light) {
  return LM_GrabHandlesOf(LM_ScreenFigure(light), LM_handle_grid::Whole, 1);
}

Point EllipsePoint(const LM_light_UI& light, const LM_globals& owner, int step) {
  const float cosine = owner.ellipseCos[step];
  const float sine = owner.ellipseSin[step];
  const float h =
      static_cast<float>(light.handle1.h) * cosine + static_cast<float>(light.handle2.h) * sine;
  const float v =
      static_cast<float>(light.handle1.v) * cosine + static_cast<float>(light.handle2.v) * sine;
  return LM_PlaceAt(LM_ScreenCenter(light), LM_Saturate16(LM_Truncate(h)),
                    LM_Saturate16(LM_Truncate(v)));
}

} // namespace

void LM_SetAddOverMode() {
  GrafPtr port = nullptr;
  GetPort(&port);
  PenMode((**port->portPixMap).pixelSize > 8 ? addOver : patXor);
}

void LM_light_UI::DrawActive(LM_globals* owner, LM_bool withGrabHandles) {
  switch (type) {
  case LM_LIGHT_DIRECTIONAL:
    return _DrawDirectional(withGrabHandles);
  case LM_LIGHT_OMNI:
    return _DrawOmni(withGrabHandles);
  case LM_LIGHT_SPOT:
    return _DrawSpot(owner);
  default:
    return;
  }
}

void LM_light_UI::DrawInactive() {
  const LM_pen_scope pen;
  _DrawHandles(0);
}

void LM_light_UI::_DrawDirectional(LM_bool withGrabHandles) {
  const LM_pen_scope pen;
  SetOutlinePen();
  DrawHandleLine(*this);
  _DrawHandles(withGrabHandles);
}

void LM_light_UI::_DrawOmni(LM_bool withGrabHandles) {
  const LM_pen_scope pen;
  SetOutlinePen();
  const Rect box = LM_OmniBox(*this);
  FrameOval(&box);
  _DrawHandles(withGrabHandles);
}

void LM_light_UI::_DrawSpot(LM_globals* owner) {
  const LM_pen_scope pen;
  SetOutlinePen();
  DrawHandleLine(*this);
  _DrawEllipse(nullptr, addOver, owner);
  _DrawHandles(1);
}

void LM_light_UI::_DrawHandles(LM_bool withGrabHandles) {
  const LM_color_pattern pattern(LM_RGBOf(color));
  SetHandlePen();
  _DrawCenterHandle(pattern.handle);
  if (withGrabHandles == 0)
    return;
  MakeRGBPat(pattern.handle, &MID_GREY);
  const LM_grab_handles grab = DrawnHandles(*this);
  for (int i = 0; i < grab.count; ++i) {
    const Point place = LM_PointOf(grab.handles[i].place);
    _DrawGrabHandle(place.h, place.v, pattern.handle);
  }
}

void LM_light_UI::_DrawCenterHandle(PixPat** pattern) {
  const Rect box = LM_CenterHandleBox(LM_ScreenCenter(*this));
  PenPixPat(pattern);
  FillCOval(&box, pattern);
  PenNormal();
  FrameOval(&box);
}

void LM_light_UI::_DrawGrabHandle(short x, short y, PixPat** pattern) {
  const Rect box = LM_GrabHandleBox(Point{y, x});
  LM_SetAddOverMode();
  PenPixPat(pattern);
  FillCRect(&box, pattern);
  PenNormal();
}

void LM_light_UI::_DrawEllipse(PixPat**, short mode, LM_globals* owner) {
  if (owner == nullptr)
    return;
  if (mode == patXor) {
    PenNormal();
    PenMode(patXor);
  } else {
    SetOutlinePen();
  }
  const Point start = EllipsePoint(*this, *owner, 0);
  MoveTo(start.h, start.v);
  for (int step = 1; step < LM_ELLIPSE_STEPS; ++step) {
    const Point next = EllipsePoint(*this, *owner, step);
    LineTo(next.h, next.v);
  }
  LineTo(start.h, start.v);
  if (mode != patXor)
    RGBForeColor(&LM_BLACK);
}

void LM_light_UI::_DrawXORActive(LM_bool withCenter, LM_bool withGrabHandles, LM_globals* owner) {
  switch (type) {
  case LM_LIGHT_DIRECTIONAL:
    return _DrawXORDirectional(withGrabHandles);
  case LM_LIGHT_OMNI:
    return _DrawXOROmni(withCenter, withGrabHandles);
  case LM_LIGHT_SPOT:
    return _DrawXORSpot(withCenter, withGrabHandles, owner);
  default:
    return;
  }
}

void LM_light_UI::_DrawXORDirectional(LM_bool withGrabHandles) {
  const LM_pen_scope pen;
  PenMode(patXor);
  DrawHandleLine(*this);
  _DrawXORHandles(1, withGrabHandles);
}

void LM_light_UI::_DrawXOROmni(LM_bool withCenter, LM_bool withGrabHandles) {
  const LM_pen_scope pen;
  PenMode(patXor);
  const Rect box = LM_OmniBox(*this);
  FrameOval(&box);
  _DrawXORHandles(withCenter, withGrabHandles);
}

void LM_light_UI::_DrawXORSpot(LM_bool withCenter, LM_bool withGrabHandles, LM_globals* owner) {
  const LM_pen_scope pen;
  PenMode(patXor);
  DrawHandleLine(*this);
  _DrawEllipse(nullptr, patXor, owner);
  _DrawXORHandles(withCenter, withGrabHandles);
}

void LM_light_UI::_DrawXORHandles(LM_bool withCenter, LM_bool withGrabHandles) {
  if (withCenter != 0)
    _DrawXORCenterHandle(nullptr);
  if (withGrabHandles == 0)
    return;
  const LM_grab_handles grab = DrawnHandles(*this);
  for (int i = 0; i < grab.count; ++i) {
    const Point place = LM_PointOf(grab.handles[i].place);
    _DrawXORGrabHandle(place.h, place.v, nullptr);
  }
}

void LM_light_UI::_DrawXORCenterHandle(PixPat**) {
  const Rect box = LM_CenterHandleBox(LM_ScreenCenter(*this));
  PenMode(patXor);
  PaintOval(&box);
}

void LM_light_UI::_DrawXORGrabHandle(short x, short y, PixPat**) {
  const Rect box = LM_GrabHandleBox(Point{y, x});
  PenMode(patXor);
  PaintRect(&box);
}

void LM_light_UI::_CalcBounds(VRect& bounds, LM_globals* owner) {
  if (owner == nullptr)
    return;
  const Point middle = LM_ScreenCenter(*this);
  const int32_t h = middle.h - owner->frameOriginX;
  const int32_t v = middle.v - owner->frameOriginY;
  switch (type) {
  case LM_LIGHT_DIRECTIONAL:
    bounds = {std::min(v, v + handle1.v) - 3, std::min(h, h + handle1.h) - 3,
              std::max(v, v + handle1.v) + 4, std::max(h, h + handle1.h) + 4};
    break;
  case LM_LIGHT_OMNI: {
    const int32_t reach = radius + 2;
    bounds = {v - reach, h - reach, v + reach + 1, h + reach + 1};
    break;
  }
  case LM_LIGHT_SPOT: {
    const CVRect32& frame = owner->previewMaps[LM_FRAME_MAP].bounds;
    bounds = {frame.top + 1, frame.left + 1, frame.bottom - 1, frame.right - 1};
    break;
  }
  default:
    break;
  }
}

void LM_globals::DrawLights() {
  DrawInactiveLights();
  CurrentLight().DrawActive(this, 1);
}

void LM_globals::DrawInactiveLights() {
  for (int i = 0; i < numLights; ++i)
    if (i != curLight)
      lights[i].DrawInactive();
}
