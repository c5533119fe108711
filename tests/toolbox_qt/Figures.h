// Figures as expressions, for tables of them.
#pragma once

#include "QuickDraw.h"

inline Rect Box(short left, short top, short right, short bottom) {
  return {top, left, bottom, right};
}
// On(FrameRect, Box(1, 1, 5, 4)), for any such function.
template <typename Draw, typename... More> void On(Draw draw, const Rect& box, More... more) {
  draw(&box, static_cast<short>(more)...);
}
inline void DrawLineFromTo(short h, short v, short toH, short toV) {
  MoveTo(h, v);
  LineTo(toH, toV);
}
