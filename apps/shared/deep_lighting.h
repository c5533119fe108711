// Lights photographs where the plug-in's contract has no room for their depth: with its parameters,
// but without running it.
#pragma once

#include "lighting.h"

#include "LM_height_source.h"
#include "lit_image.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace limn {

// A grey image as one band for a pipeline of libvips, its pixels borrowed. isDeep: with all that it
// holds.
vips::VImage BandOf(GreyImage& grey, bool isDeep);

// Makes the source the relief of settings.style. numPlanes: the image's own, which the settings'
// channels follow. heights: makes those that are none of these, as one more channel.
void UseHeights(const LM_height_source& source, int numPlanes, LitSettings& settings,
                const std::function<vips::VImage()>& heights);

// The parameters in a block as a filter session keeps it. Null when the bytes are none.
std::shared_ptr<const foo> ParametersOfBlock(const std::vector<uint8_t>& block);

// The photograph lit in its own depth, when its pixels are asked for; it is borrowed. file: its
// name, for messages. Throws Failure.
vips::VImage LitPlanes(Photograph& photograph, const LitSettings& settings,
                       const std::string& file);

// While it lives, asks on the way of an image's pixels whether to go on, on the thread that has
// them evaluated. goOn: gets 0 … 1; once it says no, the pixels cannot be had.
class ProgressAsker {
public:
  ProgressAsker(vips::VImage image, std::function<bool(double)> goOn);
  ~ProgressAsker();
  ProgressAsker(const ProgressAsker&) = delete;
  ProgressAsker& operator=(const ProgressAsker&) = delete;

private:
  static void _Ask(VipsImage* image, VipsProgress* progress, ProgressAsker* asker);

  vips::VImage _image;
  std::function<bool(double)> _goOn;
  bool _isStopped = false;
};

// The samples of a part of a lit image, row after row. file: its name, for messages. goOn: gets
// 0 … 1, and answers whether to; empty when not. Throws Failure.
std::vector<uint8_t> LitSamples(const vips::VImage& image, const limn_area& part,
                                const std::string& file, const std::function<bool(double)>& goOn);

} // namespace limn
