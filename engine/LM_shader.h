// Lighting of runs of samples, and of the tile that the host has just delivered.
//
// Sums: one LM_color96 a sample, in units where full white at intensity 127 gives 260092 for light
// straight on; they wrap modulo 2^32. There is no attenuation with distance.
#ifndef LM_SHADER_H
#define LM_SHADER_H

#include "LM_globals.h"

// Adds one light to n samples of a flat surface, whose normal is (0, 0, 1). A light at or below the
// surface adds nothing. The sums are never cleared.
void LM_ShadeLight(const LM_light& light, unsigned short n, const LM_vector2f* positions,
                   LM_color96* diffuse, LM_color96* specular);

// Shades one run of at most LM_MAX_RUN samples; a longer one is left alone. source, output: 3 bytes
// a sample. With sumsHot 1 the sums are taken as they stand, and only the combination runs. Works
// in the combine buffer of `globals`.
void LM_Shade(const foo* params, unsigned short n, const LM_vector2f* positions,
              const uint8_t* source, LM_color96* diffuseSum, LM_color96* specularSum,
              LM_bool sumsHot, uint8_t* output, LM_globals* globals);

// Adds one light to `count` facets. weights: each pixel's run of weights ends with a 0; a pixel's
// facets share its position. A facet that faces away gets nothing.
void LM_ShadeLightBumps(const LM_light& light, uint32_t count, const LM_vector2f* positions,
                        const LM_vector3f* normals, LM_color96* diffuse, LM_color96* specular,
                        const int32_t* weights);

// As LM_Shade, for facets. colors: the pixel's source colour, for each of its facets.
void LM_ShadeBumps(const foo* params, unsigned short count, const LM_vector2f* positions,
                   const LM_vector3f* normals, const uint8_t* colors, LM_color96* diffuseSums,
                   LM_color96* specularSums, LM_bool sumsHot, uint8_t* out, LM_globals* globals,
                   const int32_t* weights);

// Combines the sums of n samples with ambient light, surface colour, gloss, material and exposure
// into 3 bytes a sample. combined: room for 3 n integers.
void LM_Combine(const foo* params, unsigned short n, const uint8_t* source,
                const LM_color96* diffuseSum, const LM_color96* specularSum, int32_t* combined,
                uint8_t* output);

// Shades the delivered tile of the image, flat: input and output planes 0 to 2 in the record,
// settings in its parameter block. Uses and fills the caches that exist. An empty area or tile, one
// wider than LM_MAX_RUN, or a record without a parameter block is left alone. Calls the host's
// cancel test once a row and ignores it.
void LM_ShadeTile(FilterRecord* record, LM_globals* globals);

// The same in relief, from the heights stored for the tile; a tile whose heights are not there is
// left alone. The real run keeps nothing between tiles, the preview its samples and sums.
void LM_ShadeTileWithBumps(FilterRecord* record, LM_bump_map* map, LM_globals* globals);
void LM_ShadePreviewTileWithBumps(FilterRecord* record, LM_bump_map* map, LM_globals* globals);

#endif
