#include "MacTypes.h"

#include <algorithm>

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
  if (bottom > top && right > left) {
    *rect = {Wrapped(top), Wrapped(left), Wrapped(bottom), Wrapped(right)};
  }
}

Boolean SectRect(const Rect* a, const Rect* b, Rect* dest) {
  Rect common{std::max(a->top, b->top), std::max(a->left, b->left), std::min(a->bottom, b->bottom),
              std::min(a->right, b->right)};
  *dest = EmptyRect(&common) ? Rect{} : common;
  return !EmptyRect(&common);
}

void UnionRect(const Rect* a, const Rect* b, Rect* dest) {
  *dest = {std::min(a->top, b->top), std::min(a->left, b->left), std::max(a->bottom, b->bottom),
           std::max(a->right, b->right)};
}

Boolean PtInRect(Point point, const Rect* rect) {
  return point.v >= rect->top && point.v < rect->bottom && point.h >= rect->left &&
         point.h < rect->right;
}

Boolean EqualRect(const Rect* a, const Rect* b) {
  return a->top == b->top && a->left == b->left && a->bottom == b->bottom && a->right == b->right;
}

Boolean EmptyRect(const Rect* rect) {
  return rect->bottom <= rect->top || rect->right <= rect->left;
}

void SetPt(Point* point, int16_t h, int16_t v) {
  *point = {v, h};
}
