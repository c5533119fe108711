// Light on runs of samples: the plain arithmetic, which defines every byte.
//
// Sums: one LM_color96 a sample, in units where full white at intensity 127 gives 260092 for light
// straight on; they wrap modulo 2^32. There is no attenuation with distance.
#pragma once

#include "LM_block.h"

// Adds one light to n samples of a flat surface, whose normal is (0, 0, 1). A light at or below the
// surface adds nothing. The sums are never cleared.
void LM_ShadeLight(const LM_light& light, unsigned short n, const LM_vector2f* positions,
                   LM_color96* diffuse, LM_color96* specular);

// Adds one light to `count` facets. weights: each pixel's run of weights ends with a 0; a pixel's
// facets share its position. A facet that faces away gets nothing.
void LM_ShadeLightBumps(const LM_light& light, uint32_t count, const LM_vector2f* positions,
                        const LM_vector3f* normals, LM_color96* diffuse, LM_color96* specular,
                        const int32_t* weights);

// The same two for pixels of more than 8 bits: for one sample of a flat surface, and for the four
// facets of one pixel.
void LM_ShadeDeepLight(const LM_light& light, const LM_vector2f& position, LM_deep_color& diffuse,
                       LM_deep_color& specular);
void LM_ShadeDeepFacets(const LM_light& light, const LM_vector2f& position,
                        const LM_vector3f (&normals)[4], LM_deep_color (&diffuse)[4],
                        LM_deep_color (&specular)[4]);

// Combines the sums of n samples with ambient light, surface colour, gloss, material and exposure
// into 3 bytes a sample. combined: room for 3 n integers.
void LM_Combine(const foo* params, unsigned short n, const uint8_t* source,
                const LM_color96* diffuseSum, const LM_color96* specularSum, int32_t* combined,
                uint8_t* output);
