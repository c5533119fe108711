// Lighting as a step of a libvips pipeline: pixels are lit when somebody asks for them, on as many
// threads as libvips uses, and only the rows around them are in memory.
#pragma once

#include "LM_style.h"
#include "limn.h"

#include <atomic>
#include <memory>
#include <optional>
#include <vector>
#include <vips/vips8>

struct foo;
struct LM_kept_sums;

namespace limn {

struct LitSettings {
  LM_style style;
  // As a run of the plug-in has left them: they light instead of the style.
  std::shared_ptr<const foo> parameters;
  std::optional<limn_area> area; // none: the whole image
  // Channels after the image's own bands, for the style's relief: one band each, of the image's
  // size and of 8 or 16 bits or float, whatever the image has. Only the one that the style names is
  // ever read.
  std::vector<vips::VImage> channels;
  // The selection, one 8-bit band of the image's size; a null image: everything is selected.
  std::optional<vips::VImage> mask;
  // Sums of light to be kept from image to image (LM_render.h), while nothing of the images and
  // settings changes that they depend on; the caller's, while pixels are made. Null: none. Only of
  // use where rows as wide as its part are asked for, as for pictures in memory.
  LM_kept_sums* kept = nullptr;
  // Becomes true when the image's own pixels cannot be had, which libvips' error does not tell from
  // what goes wrong after the lighting. May be null.
  std::shared_ptr<std::atomic<bool>> hasSourceFailed;
};

// The image, of bands of 8 or 16 bits or float of which the first three are red, green and blue,
// with those three lit in the area; white is 255, 65535 or 1.0. Of 8 bits, gives the bytes that the
// plug-in gives. Nothing is computed here; the images are kept alive by the result. Throws
// vips::VError with a sentence when something does not fit.
vips::VImage LitImage(const vips::VImage& image, const LitSettings& settings);

} // namespace limn
