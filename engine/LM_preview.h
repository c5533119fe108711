// The dialog's preview: a reduced copy of the filter area, collected tile by tile, and rendered lit
// or unlit into the frame map, which the host draws.
//
// The frame map covers the dialog's item 6; the preview image lies in it at the preview offset.
#pragma once

#include "LM_export.h"
#include "LM_globals.h"

// Chooses the scale and the preview's place for the record's filter area, and allocates the pixel
// maps, filled with white, and the preview's heights. frame, *preview: the dialog's frame and the
// largest area that the preview may take, which becomes its place. CV_RESULT_NO_MEMORY leaves no
// buffer behind.
LM_EXPORT int16_t LM_SetUpPreview(FilterRecord* record, LM_globals* globals, const Rect& frame,
                                  Rect* preview);

// Reduces the delivered image tile into the preview map, and the mask tile into the frame map's
// mask.
void LM_CalcTilePreview(FilterRecord* record, LM_globals* globals);

// Collects the reduced bump channel: a walk of its own inside this call. Any code of the host's
// nextTile.
LM_EXPORT int16_t LM_GetPreviewBumpPixelMap(LM_globals* globals);

// Reduces one delivered bump tile, grown by the margin, into the bump preview map.
void LM_CalcTileBumpPreview(FilterRecord* record, LM_globals* globals);

// Renders the lit preview into the frame map. CV_RESULT_NO_MEMORY leaves the frame map as it was.
LM_EXPORT int16_t LM_ShadePreview(LM_globals* globals);

// Copies the unlit preview into the frame map.
LM_EXPORT void LM_CopyUnshadedPreview(LM_globals* globals);

// Draws black outlines around the preview image and along the frame map's border.
LM_EXPORT void LM_DrawPreviewFrameToPixelMap(GrafPort* port, LM_globals* globals);
