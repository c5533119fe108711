// Where the handles of a light are in the dialog, and which of them lies under a click.
#include "LM_arithmetic.h"
#include "LM_light_UI_mac.h"

namespace {

// The square just beyond `reach` below and to the right of the middle ends the box.
Rect HandleBox(Point middle, int reach) {
  return {LM_Saturate16(middle.v - reach), LM_Saturate16(middle.h - reach),
          LM_Saturate16(middle.v + reach + 1), LM_Saturate16(middle.h + reach + 1)};
}

short GrabHandleAt(const LM_light_UI& light, Point point) {
  return LM_GrabHandleAtPixel(LM_ScreenFigure(light), LM_FloatsOf(point));
}

} // namespace

LM_light_figure LM_ScreenFigure(const LM_light_UI& light) {
  LM_light_figure figure = light.Figure();
  figure.center = LM_FloatsOf(LM_ScreenCenter(light));
  return figure;
}

Point LM_PointOf(LM_vector2f place) {
  return {static_cast<int16_t>(place.y), static_cast<int16_t>(place.x)};
}

LM_vector2f LM_FloatsOf(Point point) {
  return {static_cast<float>(point.h), static_cast<float>(point.v)};
}

LM_vectori2 LM_WholeVector(LM_vector2f vector) {
  return {static_cast<int16_t>(vector.x), static_cast<int16_t>(vector.y)};
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
  short code = LM_HANDLE_NONE;
  if (active == 1) {
    if (type == LM_LIGHT_DIRECTIONAL)
      code = _HitTestDirectionalGrabHandles(point, nullptr);
    else if (type == LM_LIGHT_OMNI)
      code = _HitTestOmniGrabHandles(point, nullptr);
    else if (type == LM_LIGHT_SPOT)
      code = _HitTestSpotGrabHandles(point, nullptr);
  }
  if (code == LM_HANDLE_NONE && LM_CenterCoversPixel(LM_ScreenFigure(*this), LM_FloatsOf(point)))
    code = LM_HANDLE_CENTER;
  return code;
}

short LM_light_UI::_HitTestDirectionalGrabHandles(Point point, MacRegion**) {
  return GrabHandleAt(*this, point);
}

short LM_light_UI::_HitTestOmniGrabHandles(Point point, MacRegion**) {
  return GrabHandleAt(*this, point);
}

short LM_light_UI::_HitTestSpotGrabHandles(Point point, MacRegion**) {
  return GrabHandleAt(*this, point);
}
