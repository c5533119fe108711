// A style shown on a reduced photograph.
#pragma once

#include "reduced_photograph.h"

#include "LM_style.h"

#include <cstdint>
#include <vector>

struct foo;

namespace limn {

// The reduced photograph lit as the whole one would be, at the size that it is shown at: red, green
// and blue, ShownWidth() * 3 bytes a row.
// Lights fall where they fall on the photograph at its full size, and relief is as steep as there;
// a mask keeps them off.
// Empty when memory is short. Safe on any thread.
std::vector<uint8_t> LitThumbnail(const ReducedPhotograph& photograph, const LM_style& style);

// The same without light.
std::vector<uint8_t> UnlitThumbnail(const ReducedPhotograph& photograph);

// Heights of fewer pixels are less far apart for the same slope: makes the parameters those of a
// picture that is `width` pixels wide instead of `fullWidth`.
void FitRelief(foo& params, int width, int fullWidth);

} // namespace limn
