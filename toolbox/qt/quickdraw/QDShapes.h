// Lines, rectangles, ovals and rounded rectangles in the current port.
//
// Frame: the outline, wholly inside the rectangle, with the pen's size, mode and pattern.
// Paint: the inside, with the pen's mode and pattern. Erase: the inside, in the background colour.
// Invert: every pixel of the inside to its complement. FillC: the inside, in the pattern's colour,
// always copied whatever the pen's mode.
// Exclusive-or and highlight figures have hard edges at every ratio, so they undo themselves
// exactly. At ratio 1 all but rounded rectangles do; above, the other modes smooth slanted edges.
#pragma once

#include "QDPorts.h"

TB_EXPORT void MoveTo(short h, short v);
TB_EXPORT void Move(short dh, short dv);
// Lines include both end points and are one square wide, whatever the pen's size. Where lines drawn
// one after another meet, modes that would undo or add twice do so once.
TB_EXPORT void LineTo(short h, short v);
TB_EXPORT void Line(short dh, short dv);

TB_EXPORT void FrameRect(const Rect* rect);
TB_EXPORT void PaintRect(const Rect* rect);
TB_EXPORT void EraseRect(const Rect* rect);
TB_EXPORT void InvertRect(const Rect* rect);
TB_EXPORT void FillCRect(const Rect* rect, PixPatHandle pattern);

TB_EXPORT void FrameOval(const Rect* rect);
TB_EXPORT void PaintOval(const Rect* rect);
TB_EXPORT void FillCOval(const Rect* rect, PixPatHandle pattern);

// ovalWidth, ovalHeight: diameters of the corners.
TB_EXPORT void FrameRoundRect(const Rect* rect, short ovalWidth, short ovalHeight);
