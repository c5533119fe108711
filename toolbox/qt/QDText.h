// Text in the current port: UTF-8, in the desktop's own typeface.
//
// Font 0 at size 0 is the text of full-sized controls (13 units high), font 1 at size 9 that of
// small labels (11 units). A size other than 0 is drawn size * 1.2 units high.
#ifndef QD_TEXT_H
#define QD_TEXT_H

#include "MacTypes.h"

enum { bold = 1, italic = 2, underline = 4 };

struct FontInfo {
  short ascent, descent, widMax, leading;
};

TB_EXPORT void TextFont(short font);
TB_EXPORT void TextSize(short size);
TB_EXPORT void TextFace(short face);
TB_EXPORT void TextMode(short mode);

// Draws from the pen's place, the baseline, and moves the pen past the text.
TB_EXPORT void DrawString(ConstStr255Param text);
TB_EXPORT void DrawText(const void* text, short firstByte, short byteCount);
// Width in units, rounded up; the same at every pixel ratio.
TB_EXPORT short StringWidth(ConstStr255Param text);
TB_EXPORT short TextWidth(const void* text, short firstByte, short byteCount);
TB_EXPORT void GetFontInfo(FontInfo* info);

#endif
