// The dialog's preview without a dialog: what its frame shows once a style is chosen.
#pragma once

#include "image_file.h"

#include "LM_style.h"

#include <CVDocument.h>
#include <string>

namespace limn {

enum class Light { On, Off };

// The dialog's frame with the preview in it, on that area of the document, which lies inside it,
// with the style chosen, lit or, with Light::Off, as its preview switched off. file: its name, for
// messages. Throws Failure when the style has no light, and std::bad_alloc.
Photograph DrawFrame(const CVDocument& document, CVRect area, const LM_style& style, Light light,
                     const std::string& file);

} // namespace limn
