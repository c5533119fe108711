// Colour icons, and highlighting of pixels.
//
// A colour icon is resource 'cicn':
//   { "picture": "well.svg", "overlay": false }
// picture: an SVG or PNG file beside the resource file. In an SVG the word currentColor stands for
// the text colour of the theme. overlay: true for an icon that is drawn over what is there; any
// other is drawn on the background colour.
#pragma once

#include "QDPorts.h"
#include "QDRegions.h"

struct CIcon {
  short iconID;
};
typedef CIcon** CIconHandle;

// Null when there is no such icon. Released with DisposeCIcon.
TB_EXPORT CIconHandle GetCIcon(short iconID);
// Draws the icon scaled into the rectangle, at the port's own resolution. A null icon draws
// nothing.
TB_EXPORT void PlotCIcon(const Rect* rect, CIconHandle icon);
TB_EXPORT void DisposeCIcon(CIconHandle icon);

// The pixels of a port, to be named in CopyBits.
TB_EXPORT const BitMap* GetPortBitMapForCopyBits(CGrafPtr port);
// In mode `hilite`, the only one there is: highlights the target rectangle within the mask (null
// for none) and the target's clip region. Pixels of the background colour turn into the highlight
// colour and back; the source does not count.
TB_EXPORT void CopyBits(const BitMap* source, const BitMap* target, const Rect* sourceRect,
                        const Rect* targetRect, short mode, RgnHandle mask);
