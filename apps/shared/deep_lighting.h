// Lights photographs where the plug-in's contract has no room for their depth: with its parameters,
// but without running it.
#pragma once

#include "lighting.h"

#include "lit_image.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace limn {

// A grey image as one band for a pipeline of libvips, its pixels borrowed. isDeep: with all that it
// holds.
vips::VImage BandOf(GreyImage& grey, bool isDeep);
// The surroundings for such a pipeline, likewise. What lights is still to be set.
LitSettings SettingsFor(Surroundings& surroundings, bool isDeep);

// The parameters in a block as a filter session keeps it. Null when the bytes are none.
std::shared_ptr<const foo> ParametersOfBlock(const std::vector<uint8_t>& block);

// The samples of a part of a photograph of more than 8 bits, row after row, lit to the bytes of
// limn apply. file: its name, for messages. goOn: gets 0 … 1, and answers whether to; empty when
// not. Throws Failure.
std::vector<uint8_t> LitSamples(Photograph& photograph, const LitSettings& settings,
                                const limn_area& part, const std::string& file,
                                const std::function<bool(double)>& goOn);

} // namespace limn
