// What is done to heights, a whole plane at a time: rows of sums go over it, and nothing else is
// kept. Each gives the same on every machine.
#pragma once

#include "LM_height_plane.h"

// The means over squares of that radius, in pixels.
LM_height_plane LM_BoxMeans(const LM_height_plane& plane, double radius);

// Edges kept, what lies between them evened out: a guided filter with the plane as its own guide.
// Where the plane spreads less than `contrast` (standard deviation, of 65535) within the radius it
// becomes its mean, where it spreads more it stays.
void LM_SmoothBetweenEdges(LM_height_plane& plane, double radius, double contrast);
