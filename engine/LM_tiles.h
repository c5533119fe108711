// Which rectangles the plug-in asks for: the walk of real tiles over the filter area, the walk of
// preview tiles, and the bump channel's rectangles around either. Nothing here touches pixels.
//
// Tiles run left to right within a band and bands top to bottom, aligned on the area's top-left
// corner; the last of each band and the last band are narrower. The walk is over when the input
// rectangle is empty.
#pragma once

#include "LM_types.h"

class LM_globals;

// Edge of a real tile, in image pixels.
constexpr int LM_TILE_EDGE = 64;
// Margin of a bump request on every side: the neighbours of a pixel's 3 x 3 heights, each filtered
// over 3 x 3 bytes. In pixels of the image, or of the preview.
constexpr int LM_BUMP_MARGIN = 3;

void LM_SetFirstRealTileRects(FilterRecord* record, LM_globals* globals);
void LM_SetNextRealTileRects(FilterRecord* record, LM_globals* globals);

// Preview tiles are whole multiples of the preview scale. They write no output: one row is
// requested. The end of the walk sets globals->previewComplete.
void LM_SetFirstPreviewTileRects(FilterRecord* record, LM_globals* globals);
void LM_SetNextPreviewTileRects(FilterRecord* record, LM_globals* globals);

// Asks for all planes of the image: what every request but those for the bump channel does.
void LM_RequestImagePlanes(FilterRecord* record);

// Tiles for the progress display: one column (or band) more than the walk makes when the width (or
// height) is a multiple of LM_TILE_EDGE.
int32_t LM_NumTilesNeeded(const FilterRecord* record);

// Turns the present request into one for the bump channel around it, and back. A real run takes the
// channel from the parameter block, the preview from the settings being edited. A side beyond what
// 16 bits hold stays at their end.
void LM_RealToBumpRects(FilterRecord* record, LM_globals* globals);
void LM_BumpToRealRects(FilterRecord* record, LM_globals* globals);
void LM_PreviewToBumpRects(FilterRecord* record, LM_globals* globals);
void LM_BumpToPreviewRects(FilterRecord* record, LM_globals* globals);

// Image pixels per preview pixel: at least 1, also where no preview was set up.
int32_t LM_PreviewStep(const LM_globals* globals);
// LM_BUMP_MARGIN preview pixels, in image pixels.
int32_t LM_PreviewMargin(const LM_globals* globals);

// The present bump request with its right and bottom sides as they were meant, where growing by
// `margin` had to cut them to 16 bits. What was cut off lies outside any image.
CVRect32 LM_WantedBumpRect(const FilterRecord* record, const LM_globals* globals, int32_t margin);
