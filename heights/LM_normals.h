// Heights as the normals of their surface, and back.
#pragma once

#include "LM_height_plane.h"
#include "LM_height_solver.h"

#include <cstdint>

// What normals call a slope of 45 degrees: heights that differ by so much from pixel to pixel.
constexpr int LM_HEIGHT_OF_A_PIXEL = 4096;

// What green stands for: up is where it is bright on slopes that face the upper edge, down the
// other way round.
enum class LM_normals_y { Up, Down };

// The normals of row y: red, green and blue of 16 bits each for a unit vector to the right, up or
// down, and out of the picture; 32768 is 0, 65535 is 1.
void LM_NormalsOfRow(const LM_height_plane& plane, int y, LM_normals_y greenIs, uint16_t* row);

// The slopes that normals of components -1 to 1 have, `normal` being three a pixel. Those that do
// not point out of the picture, or are far too short, have none, and what is steeper than 16 to 1
// counts as so steep. Answers how many have none.
size_t LM_SlopesOfNormals(const float* normal, size_t count, LM_normals_y greenIs, float* across,
                          float* down);

// Which way slopes fit together, that were read with green up: 1 as they are, -1 the other way, 0
// when both are as good. Those of a surface rise equally along both ways around a pixel.
double LM_FitTogether(const LM_slopes& slopes);

// The heights of slopes, around the middle. share: how steep they are of what they should be, less
// than 1 where 16 bits hold no more.
struct LM_integrated_heights {
  LM_height_plane plane;
  double share = 1;
};
LM_integrated_heights LM_HeightsOfSlopes(const LM_slopes& slopes);
