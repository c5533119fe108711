// From a parameter block back to a style.
#pragma once

struct LM_style;
struct foo;

// Finds a style from which LM_ParametersFromStyle makes this block, made for a filter area of
// areaWidth x areaHeight pixels: all that shading reads of it is the same to the last bit. The
// block does not say all that the user set: lights that are off are not in it, and a dim light of a
// bright colour is a bright light of a dim one. False when there is no such style, or none is
// found.
bool LM_StyleOfParameters(const foo& params, int areaWidth, int areaHeight, LM_style& style);

// Whether shading gives the same with both blocks, whatever the image.
bool LM_SameShading(const foo& params, const foo& other);
