// A slider of the dialog: a thin bar with a tick in its middle, an indicator under it, a title to
// the left, a label at each end above it, and the value as a number above the middle.
#pragma once

#include "Controls.h"

// Owned by its control, whose reference value is its address. Coordinates are those of the
// control's port. Drawing goes to the current port and leaves pen mode, pattern and colours alone.
class LM_slider_type_0 {
public:
  ControlHandle control;
  int16_t titleWidth; // room for the title, in pixels
  Str255 leftLabel;
  Str255 rightLabel;
  Boolean percent; // the number runs from 0 to 100, else from -100 to 100

  // The bar's ends, its line, and the tip of the indicator.
  short BarMinX() const;
  short BarMaxX() const;
  short BarY() const;
  short IndicatorX() const; // by the control's value
  short IndicatorY() const;

  void DrawBar() const;
  void DrawIndicator() const; // and the number
  void DrawTitle() const;
  void DrawLabels() const;
  void DrawValue() const;
  void EraseAreaBelowBar() const;

  // LM_SLIDER_PART where a press grabs the indicator, which is all along the bar, else 0.
  short PartNumberForPoint(short h, short v) const;
  // Stores the indicator's outline.
  void CalcIndicatorRegion(RgnHandle region) const;
  // Stores a rectangle of the control's size, with its corner at the coordinate origin.
  void CalcControlRegion(RgnHandle region) const;

  // Moves the indicator by that many pixels, and the control's value with it, and draws both. No
  // action procedure is called.
  void UpdateIndicatorPosition(short offset);

  // The value as shown.
  int32_t ShownValue() const;

private:
  short _BarMiddle() const;
};

// What PartNumberForPoint answers, while drawing part inThumb (129) redraws the indicator.
constexpr short LM_SLIDER_PART = 130;
