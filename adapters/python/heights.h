// limn.heights: heights made of an array.
#pragma once

#include "LM_height_source.h"

#include <pybind11/numpy.h>

// image: of shape (height, width, channels) or (height, width), of any type that is lit. source:
// Auto, Luminance or Channel. Gives heights of 16 bits, of shape (height, width). Lets other
// threads run meanwhile. Throws as limn.light.
pybind11::array Heights(const pybind11::array& image, LM_height_source source);
