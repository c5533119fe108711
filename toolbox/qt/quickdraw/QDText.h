// Text in the current port: UTF-8, in the desktop's own typeface.
//
// Font 0 at size 0 is the text of full-sized controls (13 units high), font 1 at size 9 that of
// small labels (11 units). A size other than 0 is drawn size * 1.2 units high.
#pragma once

#include "MacTypes.h"

// TextFace: 0 is plain.
enum { bold = 1 };

TB_EXPORT void TextFont(short font);
TB_EXPORT void TextSize(short size);
TB_EXPORT void TextFace(short face);

// Draws from the pen's place, the baseline, and moves the pen past the text.
TB_EXPORT void DrawString(ConstStr255Param text);
// Width in units, rounded up; the same at every pixel ratio.
TB_EXPORT short StringWidth(ConstStr255Param text);
