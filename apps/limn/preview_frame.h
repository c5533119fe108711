// The dialog's preview without a dialog: what its frame shows once a style is chosen.
#pragma once

#include "LM_style.h"

#include <CVDocument.h>
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

// The frame map as the dialog shows it on that area of the document, which lies inside it, with the
// style chosen, lit or, with Light::Off, as its preview switched off. file: its name, for messages.
// Throws Failure when the style has no light, and std::bad_alloc.
FramePicture DrawFrame(const CVDocument& document, CVRect area, const LM_style& style, Light light,
                       const std::string& file);

} // namespace limn
