// Pictures from a host.
#pragma once

#include "MacTypes.h"

// Draws a pixel map into the current port: the part `source` of it with its top-left at (column,
// row), one map pixel a unit, scaled smoothly to the screen's ratio. With a mask (version 1) each
// pixel is blended over the port by its mask byte. What a FilterRecord.showPixels has to do.
// Result: 0; paramErr when the map makes no sense (no pixels, strides that overlap, a mode other
// than grey (1) and RGB (3), more than 30000 pixels a side); memFullErr.
TB_EXPORT int16_t ShowPixelMap(const CVPixelMap* map, const CVRect32* source, int32_t row,
                               int32_t column);
