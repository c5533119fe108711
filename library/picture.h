// A caller's picture, checked once and put into the form that the engine reads.
#pragma once

#include "limn.h"

#include "LM_render.h"

namespace limn {

// The part of a limn_picture that a lighting is prepared for.
struct Format {
  int32_t width, height, channels;
  LM_rect area; // inside the picture, never empty
};
bool operator==(const Format& a, const Format& b);

// Throws LIMN_BAD_ARGUMENT when sizes, channels or area cannot be.
Format FormatOf(const limn_picture& picture);

// The picture's pixels, with strides filled in. Every byte of a view lies within the address space.
struct Pixels {
  LM_render_views views;
  bool inPlace;
  bool reliefIsInOutput; // its bytes may change while the output is written
};

// ownRelief: the picture's channel that is the relief when it brings none, from 1; 0 for none.
// Throws LIMN_BAD_ARGUMENT when pointers and strides cannot be, or source and output are mixed up.
Pixels PixelsOf(const limn_picture& picture, const Format& format, int ownRelief);

} // namespace limn
