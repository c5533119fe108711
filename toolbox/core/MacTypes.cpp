#include "MacTypes.h"

namespace {

int16_t Wrapped(int value) {
  return static_cast<int16_t>(value);
}

} // namespace

void SetRect(Rect* rect, int16_t left, int16_t top, int16_t right, int16_t bottom) {
  *rect = {top, left, bottom, right};
}

void OffsetRect(Rect* rect, int16_t dh, int16_t dv) {
  *rect = {Wrapped(rect->top + dv), Wrapped(rect->left + dh), Wrapped(rect->bottom + dv),
           Wrapped(rect->right + dh)};
}

void InsetRect(Rect* rect, int16_t dh, int16_t dv) {
  const int top = rect->top + dv;
  const int left = rect->left + dh;
  const int bottom = rect->bottom - dv;
  const int right = rect->right - dh;
  *rect = {};
  if (bottom > top && right > left)
    *rect = {Wrapped(top), Wrapped(left), Wrapped(bottom), Wrapped(right)};
}

Boolean PtInRect(Point point, const Rect* rect) {
  return point.v >= rect->top && point.v < rect->bottom && point.h >= rect->left &&
         point.h < rect->right;
}

Boolean EmptyRect(const Rect* rect) {
  return rect->bottom <= rect->top || rect->right <= rect->left;
}
