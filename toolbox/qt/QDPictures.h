// Colour icons, copying of pixels, and ports without a window.
//
// A colour icon is resource 'cicn':
//   { "picture": "well.svg", "overlay": false }
// picture: an SVG or PNG file beside the resource file. In an SVG the word currentColor stands for
// the text colour of the theme. overlay: true for an icon that is drawn over what is there; any
// other is drawn on the background colour.
#ifndef QD_PICTURES_H
#define QD_PICTURES_H

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
// Copies a rectangle of pixels, scaled smoothly where the rectangles differ in size, through the
// mask and, when the target is the current port, its clip region.
// Modes: copy, and 50, which ignores the source and highlights the target rectangle: pixels of the
// background colour turn into the highlight colour and back. mask: null for none.
TB_EXPORT void CopyBits(const BitMap* source, const BitMap* target, const Rect* sourceRect,
                        const Rect* targetRect, short mode, RgnHandle mask);

// A port without a window, at a pixel ratio of its own choosing (1 for the classic call), erased to
// white. Null when it cannot be had. Its background and inks do not follow the theme.
typedef CGrafPtr GWorldPtr;
TB_EXPORT GWorldPtr NewPortWithRatio(const Rect* bounds, double pixelRatio);
TB_EXPORT OSErr NewGWorld(GWorldPtr* world, short pixelDepth, const Rect* bounds, void* colorTable,
                          void* device, uint32_t flags);
TB_EXPORT void DisposeGWorld(GWorldPtr world);

#endif
