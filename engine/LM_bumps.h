// Relief of the tile that the host has just delivered.
#pragma once

#include "LM_heights.h"
#include "LM_types.h"

class LM_globals;

// Bytes of the height buffer that a run starts with: 66 x 66 heights. It grows when a tile needs
// more.
constexpr uint32_t LM_FIRST_HEIGHT_BYTES = 17424;

// Gives the map a buffer of so many bytes at least. False, and no buffer, when it cannot be had.
bool LM_GrowHeights(LM_bump_map& map, uint64_t bytes);

// Filters the delivered channel rectangle into the bump map, growing its buffer when needed. Height
// (x, y) lies on pixel (x + 2, y + 2) of the rectangle. Beyond what was delivered its last row
// and column go on; in the preview the buffer holds more than the rectangle says. Result:
// 0, or 1 when the buffer cannot be had; the map then holds no heights.
int16_t LM_StoreBumpMap(FilterRecord* record, LM_globals* globals);
