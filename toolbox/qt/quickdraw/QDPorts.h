// Ports, the pen, colours and clipping.
//
// A port is a picture of its own coordinates, one unit per pixel of a plain screen. It is kept at
// the screen's pixel ratio: the unit square (h, v) covers the device pixels round(h * ratio) up to
// round((h + 1) * ratio), so squares never overlap and never leave a gap, at any ratio.
//
// Inks. Where a picture has been shown (see PixelMaps.h) and in a port without
// a window, inks are exactly the colours asked for. On a dialog's own background the neutral inks
// of RGBForeColor follow the desktop's theme: black is its text colour, white its window colour,
// greys lie between, so that a dark theme stays legible. Pixel patterns are exact everywhere.
#pragma once

#include "MacTypes.h"

struct GrafPort;
typedef GrafPort* GrafPtr;
typedef GrafPort* CGrafPtr;
typedef GrafPort* WindowPtr;
typedef GrafPort* DialogPtr;

// A rectangle's worth of pixels, named as source or target of CopyBits. port: whose pixels.
struct BitMap {
  Rect bounds;
  GrafPtr port;
};

// The part of a pixel map that callers look at. pixelSize: bits per pixel, 32 unless a test sets
// it.
struct PixMap {
  Rect bounds;
  short pixelSize;
};
typedef PixMap** PixMapHandle;

// Eight rows of a pattern: all bits clear is the background colour, any other the foreground's.
struct Pattern {
  uint8_t pat[8];
};

// A pattern of one colour, made by NewPixPat and MakeRGBPat.
struct PixPat {
  RGBColor color;
};
typedef PixPat** PixPatHandle;

// Everything that GetPenState saves. patternColor counts when usesPixPat is set.
struct PenState {
  Point pnLoc;
  Point pnSize;
  short pnMode;
  Pattern pnPat;
  Boolean usesPixPat;
  RGBColor patternColor;
};

struct PortState;

// A port. Fields are for reading; the calls below change them. state is the library's own.
struct GrafPort {
  Rect portRect;
  BitMap portBits;
  PixMapHandle portPixMap;
  PenState pen;
  short txFont;
  short txFace;
  short txSize;
  RGBColor rgbFgColor;
  PortState* state;
};

// Pen and transfer modes. A mode not named here copies.
enum {
  srcCopy = 0,
  patCopy = 8,
  patXor = 10,  // inverts by the ink: black inverts wholly; the same figure twice changes nothing
  addOver = 34, // adds each component, wrapping round: grey brightens the dark, darkens the light
  hilite = 50   // exchanges the background colour with the desktop's highlight colour
};

// Whether dialogs can be shown: an application object exists.
TB_EXPORT bool TB_HasDesktop();

// A port to draw in when no window's is current; never null.
TB_EXPORT void GetPort(GrafPtr* port);
// Makes a port current. A null port, and a port that is disposed of while current, leave a port of
// no pixels current.
TB_EXPORT void SetPort(GrafPtr port);

TB_EXPORT void GetPenState(PenState* state);
TB_EXPORT void SetPenState(const PenState* state);
// Pen of 1 x 1, copy mode, black pattern; leaves its place and the colours.
TB_EXPORT void PenNormal();
TB_EXPORT void PenMode(short mode);
TB_EXPORT void PenSize(short width, short height);
TB_EXPORT void PenPat(const Pattern* pattern);
// Takes the pattern's present colour; the pattern may be disposed of afterwards.
TB_EXPORT void PenPixPat(PixPatHandle pattern);

TB_EXPORT PixPatHandle NewPixPat();
TB_EXPORT void MakeRGBPat(PixPatHandle pattern, const RGBColor* color);
TB_EXPORT void DisposePixPat(PixPatHandle pattern);

TB_EXPORT void RGBForeColor(const RGBColor* color);
// Sets the foreground to a colour of the interface. 1: frames of boxes and wells. Other numbers:
// black. RGBForeColor undoes it.
TB_EXPORT void FrameColor(short number);

// From the screen to the current port: moved by the place of the port's window, in units of the
// port. A port without a window lies at the screen's origin.
TB_EXPORT void GlobalToLocal(Point* point);

// White and black patterns, as classic programs name them.
struct QDGlobals {
  Pattern white;
  Pattern black;
};
TB_EXPORT extern const QDGlobals qd;
