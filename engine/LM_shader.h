// Lighting of the tile that the host has just delivered.
#pragma once

#include "LM_globals.h"
#include "LM_light_shader.h"

// Shades one run of at most LM_MAX_RUN samples; a longer one is left alone. source, output: 3 bytes
// a sample. With sumsHot 1 the sums are taken as they stand, and only the combination runs. Works
// in the combine buffer of `globals`.
void LM_Shade(const foo* params, unsigned short n, const LM_vector2f* positions,
              const uint8_t* source, LM_color96* diffuseSum, LM_color96* specularSum,
              LM_bool sumsHot, uint8_t* output, LM_globals* globals);

// As LM_Shade, for facets. colors: the pixel's source colour, for each of its facets.
void LM_ShadeBumps(const foo* params, unsigned short count, const LM_vector2f* positions,
                   const LM_vector3f* normals, const uint8_t* colors, LM_color96* diffuseSums,
                   LM_color96* specularSums, LM_bool sumsHot, uint8_t* out, LM_globals* globals,
                   const int32_t* weights);

// Shades the delivered tile of the image, flat: input and output planes 0 to 2 in the record,
// settings in its parameter block. Uses and fills the caches that exist. An empty area or tile, one
// wider than LM_MAX_RUN, or a record without a parameter block is left alone. Calls the host's
// cancel test once a row and ignores it.
void LM_ShadeTile(FilterRecord* record, LM_globals* globals);

// The same in relief, from the heights stored for the tile; a tile whose heights are not there is
// left alone. The real run keeps nothing between tiles, the preview its samples and sums.
void LM_ShadeTileWithBumps(FilterRecord* record, LM_bump_map* map, LM_globals* globals);
void LM_ShadePreviewTileWithBumps(FilterRecord* record, LM_bump_map* map, LM_globals* globals);
