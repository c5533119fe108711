// Regions and clipping. Rectangle arithmetic is in MacTypes.h.
#pragma once

#include "MacTypes.h"

// A set of unit squares, which the library keeps behind this. rgnBBox: the smallest rectangle
// around them, (0, 0, 0, 0) when empty.
struct MacRegion {
  Rect rgnBBox;
};
typedef MacRegion** RgnHandle;

// An empty region, to be released with DisposeRgn. A null region is empty to every call here and
// is never written to.
TB_EXPORT RgnHandle NewRgn();
TB_EXPORT void DisposeRgn(RgnHandle region);
TB_EXPORT void RectRgn(RgnHandle region, const Rect* rect);
TB_EXPORT void SectRgn(RgnHandle a, RgnHandle b, RgnHandle target);
TB_EXPORT Boolean PtInRgn(Point point, RgnHandle region);

// From OpenRgn to CloseRgn nothing is drawn in the current port; the insides of framed rectangles,
// ovals and rounded rectangles and of closed figures drawn with lines are collected instead,
// squares that lie in an even number of them left out. CloseRgn stores the result. Framed figures
// cover the same squares as PaintRect and PaintOval of them. A figure of lines covers the squares
// whose middles it surrounds.
TB_EXPORT void OpenRgn();
TB_EXPORT void CloseRgn(RgnHandle target);

// The clip region of the current port; a new port's holds every square.
TB_EXPORT void GetClip(RgnHandle target);
TB_EXPORT void SetClip(RgnHandle region);
TB_EXPORT void ClipRect(const Rect* rect);

// The sum of two points as vectors; it wraps at 16 bits.
void AddPt(Point source, Point* target);
TB_EXPORT Boolean EqualPt(Point a, Point b);
