// The plug-in's dialog without a screen: shows a style on the preview once, keeps the picture, and
// cancels.
#pragma once

#include "LM_style.h"

#include <CVFilterSession.h>
#include <cstdint>
#include <vector>

namespace limn {

enum class Light { On, Off };

// The dialog's frame with the preview in it: interleaved red, green and blue, without padding.
struct FramePicture {
  int width = 0;
  int height = 0;
  std::vector<uint8_t> pixels;
};

// The frame map as the dialog shows it on that area of the document with the style chosen, lit or,
// with Light::Off, as its preview switched off. Throws Failure as lighting the document would.
FramePicture DrawFrame(CVDocument& document, CVRect area, const LM_style& style, Light light,
                       const std::string& file);

} // namespace limn
