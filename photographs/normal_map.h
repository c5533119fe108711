// Normal maps, read as heights and made of them.
#pragma once

#include "image_file.h"

#include "LM_normals.h"

#include <optional>
#include <string>
#include <vector>
#include <vips/vips8>

namespace limn {

// Reads a map of 8 or 16 bits and integrates it into heights, as large as the map. greenIs: guessed
// where it is not given. What was guessed, and how much lower the heights had to be made, is added
// to the notices. Its colours are numbers: no profile is applied, and an alpha channel is ignored.
// A picture that is no normal map is a Failure(BadInput).
GreyImage ReadNormalMap(const std::string& path, std::optional<LM_normals_y> greenIs,
                        std::vector<std::string>& notices);

// The normals of heights, of one band of 16 bits: three such bands, which are in memory.
vips::VImage NormalMapOf(const vips::VImage& heights, LM_normals_y greenIs);

} // namespace limn
