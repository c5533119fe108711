// Sums of light that are kept from picture to picture: they depend on the lights, and in relief on
// the heights, but on no pixel and on none of gloss, material, exposure and ambience.
//
// A frame that is lit from them costs what it takes to read them, so they lie as tightly as they
// can without a bit of the picture being another. That needs a bound of what the lights can give,
// which is told before anything is lit. It is that of one light, summed up:
//
// - Diffuse: colour * falloff * (N . L) / |L|, at most colour * falloff, whatever the normal N.
// - Specular: colour * falloff * (R . L) (R . L) / |L|, R the view direction mirrored at N. R is as
//   long as N, so this is at most colour * falloff * |L|; a flat surface's R is (0, 0, 1), and
//   there it is colour * falloff * L's height.
//
// The shader works these out in single precision. A normal is that of the gradient, each of its
// components rounded three times, so |N| < 1 + 2^-21, and with u = N / |N|
//   |R|^2 = 1 + 4 u.z^2 |N|^2 (|N|^2 - 1) < 1 + 2^-17.
// Sums of three products are off by less than 2^-21 of the two vectors' lengths, and |L| times its
// inverse by less than 2^-21 of 1, as long as squares neither vanish nor overflow. Together that
// makes less than 2^-15; an allowance of 2^-12 is added. Products are then cut towards zero, or at
// the ends of 32 bits, and nothing that is added to a sum is larger than its bound.
#pragma once

#include <memory>

#include "LM_kernel_lights.h"
#include "LM_packed_sums.h"

// How the sums lie: as LM_kept_run has it. By default wide.
struct LM_kept_form {
  int planes = LM_PLANES; // 1: the lights are gray, and one plane stands for all
  bool isTight = false;
};

// The tightest form for the sums of all of a block's lights in that filter area. It holds while
// they and the area stay. Wide where no other is sure.
LM_kept_form LM_TightForm(const foo& params, const LM_rect& area, bool relief);

// The sums in a part of one job's filter area. Rows whose lights vectors do not take are lit anew
// each time, as everything is without vectors. Threads may share it while their rectangles do not
// overlap.
struct LM_kept_sums {
  int facets;      // 1 for a flat surface, LM_FACETS for relief
  LM_rect rect;    // the part
  uint32_t lights; // which of the block's they hold; others are lit each time
  LM_kept_form form;
  // Of all lights, in that form; or of some, for the others to be worked out over them.
  std::unique_ptr<int32_t[]> sums;
  LM_packed_sums packed;
  std::unique_ptr<uint8_t[]> ready; // by block of LM_RENDER_BLOCK columns, then by row

  bool IsEmpty() const { return ready == nullptr; } // nothing is kept
  // From a block on that begins at that place of the rectangle.
  LM_kept_run At(int32_t column, int32_t row) const;
};

// What it takes for a part, at most.
uint64_t LM_KeptBytes(const LM_rect& rect, bool relief, uint32_t lights,
                      const LM_kept_form& form = {});
// Makes room for sums of the marked lights that are to be kept, and forgets those that were. rect:
// not empty, and in the filter area. form: of the sums of all lights. False when memory is short:
// nothing is kept then.
bool LM_StartKeeping(const LM_rect& rect, bool relief, uint32_t lights, LM_kept_sums& kept,
                     const LM_kept_form& form = {});
