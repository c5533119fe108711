#include "LM_mac_slider_control.h"

#include "HostDialogs.h"
#include "LM_arithmetic.h"
#include "LM_drawing_scopes.h"
#include "MacStrings.h"

namespace {

// 16.16 fixed point: part of whole. A whole of nothing has no parts.
int32_t Fraction(int32_t part, int32_t whole) {
  if (whole == 0)
    return 0;
  return static_cast<int32_t>((int64_t{part} * 65536) / whole);
}

} // namespace

short LM_slider_type_0::BarMinX() const {
  return LM_Cut16((**control).contrlRect.left + titleWidth + 4);
}

short LM_slider_type_0::BarMaxX() const {
  return LM_Cut16((**control).contrlRect.right - 5);
}

short LM_slider_type_0::BarY() const {
  const Rect& box = (**control).contrlRect;
  return LM_Cut16((box.top + box.bottom) / 2 + 1);
}

short LM_slider_type_0::IndicatorX() const {
  const ControlRecord& record = **control;
  const int32_t fraction =
      Fraction(record.contrlValue - record.contrlMin, record.contrlMax - record.contrlMin);
  const int32_t length = BarMaxX() - BarMinX();
  return LM_Cut16(BarMinX() + (LM_WrapMultiply(fraction, length) >> 16));
}

short LM_slider_type_0::IndicatorY() const {
  return LM_Cut16(BarY() + 1);
}

short LM_slider_type_0::_BarMiddle() const {
  return LM_Cut16((BarMinX() + BarMaxX()) / 2);
}

void LM_slider_type_0::DrawBar() const {
  const short y = BarY();
  const short above = LM_Cut16(y - 1);
  MoveTo(BarMinX(), above);
  LineTo(BarMinX(), y);
  LineTo(BarMaxX(), y);
  LineTo(BarMaxX(), above);
  MoveTo(_BarMiddle(), above);
  LineTo(_BarMiddle(), y);
}

void LM_slider_type_0::DrawIndicator() const {
  MoveTo(IndicatorX(), IndicatorY());
  DrawPISlider();
  DrawValue();
}

void LM_slider_type_0::DrawTitle() const {
  const LM_small_text_scope text;
  MoveTo((**control).contrlRect.left, BarY());
  DrawString((**control).contrlTitle);
}

void LM_slider_type_0::DrawLabels() const {
  const LM_small_text_scope text;
  const short baseline = LM_Cut16(BarY() - 3);
  MoveTo(LM_Cut16(BarMinX() + 1), baseline);
  DrawString(leftLabel);
  MoveTo(LM_Cut16(BarMaxX() - StringWidth(rightLabel)), baseline);
  DrawString(rightLabel);
}

int32_t LM_slider_type_0::ShownValue() const {
  const ControlRecord& record = **control;
  if (record.contrlMax == 0)
    return 0;
  if (percent)
    return record.contrlValue * 100 / record.contrlMax;
  return record.contrlValue * 200 / record.contrlMax - 100;
}

void LM_slider_type_0::DrawValue() const {
  const short middle = _BarMiddle();
  const Rect strip = {(**control).contrlRect.top, LM_Cut16(middle - 12), LM_Cut16(BarY() - 2),
                      LM_Cut16(middle + 12)};
  EraseRect(&strip);
  const LM_small_text_scope text;
  Str255 number;
  NumToString(ShownValue(), number);
  MoveTo(LM_Cut16(middle - StringWidth(number) / 2), LM_Cut16(BarY() - 3));
  DrawString(number);
}

void LM_slider_type_0::EraseAreaBelowBar() const {
  const Rect& box = (**control).contrlRect;
  const Rect below = {LM_Cut16(BarY() + 1), LM_Cut16(box.left + titleWidth),
                      LM_Cut16(box.bottom - 1), box.right};
  EraseRect(&below);
}

short LM_slider_type_0::PartNumberForPoint(short h, short v) const {
  const bool across = h >= BarMinX() - 4 && h <= BarMaxX() + 4;
  const bool along = v >= IndicatorY() - 2 && v <= IndicatorY() + 6;
  return across && along ? LM_SLIDER_PART : short{0};
}

void LM_slider_type_0::CalcIndicatorRegion(RgnHandle region) const {
  OpenRgn();
  DrawIndicator();
  CloseRgn(region);
}

void LM_slider_type_0::CalcControlRegion(RgnHandle region) const {
  const Rect& box = (**control).contrlRect;
  const short width = LM_Cut16(box.right - box.left);
  const short height = LM_Cut16(box.bottom - box.top);
  OpenRgn();
  MoveTo(0, 0);
  LineTo(width, 0);
  LineTo(width, height);
  LineTo(0, height);
  LineTo(0, 0);
  CloseRgn(region);
}

void LM_slider_type_0::UpdateIndicatorPosition(short offset) {
  const int32_t length = BarMaxX() - BarMinX();
  if (length == 0)
    return;
  ControlRecord& record = **control;
  const short before = IndicatorX();
  const short valueBefore = record.contrlValue;
  const int32_t fraction = Fraction(before + offset - BarMinX(), length);
  const LM_pen_scope pen;
  PenPat(&qd.white);
  const Rect old = {IndicatorY(), LM_Cut16(before - 6), LM_Cut16(IndicatorY() + 6),
                    LM_Cut16(before + 6)};
  PaintRect(&old);
  // Right for a minimum of 0, which all sliders of the dialog have.
  const int32_t product = LM_WrapMultiply(fraction, record.contrlMax);
  record.contrlValue =
      LM_Cut16(record.contrlMin + (LM_WrapSubtract(product, record.contrlMin) >> 16));
  PenNormal();
  DrawIndicator();
  if (record.contrlValue != valueBefore)
    TB_TellControlValue(control);
}
