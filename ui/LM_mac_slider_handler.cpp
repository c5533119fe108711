#include "LM_mac_slider_handler.h"

#include "Events.h"
#include "LM_arithmetic.h"
#include "LM_drawing_scopes.h"
#include "LM_mac_UI.h"
#include "MacResources.h"

#include <algorithm>
#include <new>

namespace {

constexpr uint8_t INACTIVE = 255;
constexpr RGBColor INACTIVE_INK = {0x7FFF, 0x7FFF, 0x7FFF};

int16_t LowWord(intptr_t value) {
  return LM_Cut16(static_cast<int32_t>(value & 0xFFFF));
}

int16_t HighWord(intptr_t value) {
  return LM_Cut16(static_cast<int32_t>((value >> 16) & 0xFFFF));
}

void DrawSlider(const LM_slider_type_0& slider, short part) {
  const ControlRecord& record = **slider.control;
  if (record.contrlVis == 0)
    return;
  const LM_pen_scope pen;
  const bool inactive = record.contrlHilite == INACTIVE;
  if (inactive)
    RGBForeColor(&INACTIVE_INK);
  if (part == 0) {
    slider.DrawBar();
    slider.DrawLabels();
    slider.EraseAreaBelowBar();
    slider.DrawTitle();
  } else if (part == inThumb) {
    slider.EraseAreaBelowBar();
  }
  slider.DrawIndicator();
  if (inactive)
    RGBForeColor(&LM_BLACK);
}

RgnHandle RegionIn(intptr_t param) {
  // NOLINTNEXTLINE(performance-no-int-to-ptr): messages carry addresses as integers
  return reinterpret_cast<RgnHandle>(param);
}

void CalcRegions(const LM_slider_type_0& slider, intptr_t param) {
  if ((param & kCalcRegionHighBit) != 0)
    slider.CalcControlRegion(RegionIn(param & ~kCalcRegionHighBit));
  else
    slider.CalcIndicatorRegion(RegionIn(param));
}

} // namespace

LM_slider_type_0* LM_SliderOf(ControlHandle control) {
  // NOLINTNEXTLINE(performance-no-int-to-ptr): the reference value is an integer by contract
  return reinterpret_cast<LM_slider_type_0*>(GetControlReference(control));
}

LM_slider_type_0* LM_InitControl(short, ControlHandle control) {
  const intptr_t reference = GetControlReference(control);
  auto* slider = new (std::nothrow) LM_slider_type_0{};
  if (slider != nullptr) {
    const int16_t labels = HighWord(reference);
    slider->titleWidth = LowWord(reference);
    GetIndString(slider->leftLabel, labels, 1);
    GetIndString(slider->rightLabel, labels, 2);
    slider->percent = labels == LM_PERCENT_LABELS ? 1 : 0;
    slider->control = control;
    TB_TellControlBetween(control, slider->percent != 0 ? 0 : -100, 100); // as the number is drawn
  }
  SetControlReference(control, reinterpret_cast<intptr_t>(slider));
  return slider;
}

void LM_DispControl(LM_slider_type_0* slider) {
  SetControlReference(slider->control, 0);
  delete slider;
}

void LM_DragIndicator(LM_slider_type_0* slider) {
  const auto mouseOnBar = [slider] {
    Point mouse;
    GetMouse(&mouse);
    return std::max(std::min(mouse.h, slider->BarMaxX()), slider->BarMinX());
  };
  short last = mouseOnBar();
  const auto moveTo = [slider](short h) {
    slider->UpdateIndicatorPosition(LM_Cut16(h - slider->IndicatorX()));
  };
  const auto follow = [&] {
    const short h = mouseOnBar();
    if (h != last)
      moveTo(h);
    last = h;
  };
  moveTo(last);
  while (StillDown())
    follow();
  follow();
}

int32_t SC_main(short varCode, ControlHandle control, short message, intptr_t param) {
  if (message == initCntl) {
    LM_InitControl(varCode, control);
    return 0;
  }
  LM_slider_type_0* slider = LM_SliderOf(control);
  if (slider == nullptr)
    return 0;
  const LM_port_scope port((**control).contrlOwner);
  switch (message) {
  case drawCntl:
    DrawSlider(*slider, LowWord(param));
    return 0;
  case testCntl:
    return slider->PartNumberForPoint(LowWord(param), HighWord(param));
  case calcCRgns:
    CalcRegions(*slider, param);
    return 0;
  case dispCntl:
    LM_DispControl(slider);
    return 0;
  case posCntl:
    slider->UpdateIndicatorPosition(LowWord(param));
    return 0;
  case dragCntl:
    if (param != 0)
      LM_DragIndicator(slider);
    return 1;
  case calcCntlRgn:
    slider->CalcControlRegion(RegionIn(param));
    return 0;
  case calcThumbRgn:
    slider->CalcIndicatorRegion(RegionIn(param));
    return 0;
  default:
    return 0;
  }
}
