// Lighting a photograph while it is decoded, in a style, with heights from wherever they come.
#pragma once

#include "lighting.h"
#include "lit_image.h"

#include "LM_height_source.h"
#include "height_image.h"

#include <atomic>
#include <memory>
#include <string>
#include <utility>
#include <vector>
#include <vips/vips8>

namespace limn {

// What the heights of a photograph are made from. The surroundings are borrowed.
HeightSubject SubjectOf(const std::string& path, int width, int height,
                        const Surroundings& surroundings);

// Gives the settings the channels that follow a photograph's own, made its size, and the heights
// that its relief is taken from, if they are none of these. heights: made before, for this source;
// null: they are made here.
void SetChannels(const LM_height_source& source, const HeightSubject& subject,
                 std::vector<GreyImage>& added, int numPlanes, bool isDeep, LitSettings& settings,
                 const std::shared_ptr<const LM_height_plane>& heights = nullptr);

// Tells which channels and heights are scaled to a photograph of that size.
void NoteScaled(const Surroundings& surroundings, int width, int height,
                std::vector<std::string>& notices);

struct LightingOfPhotographs {
  const LM_style& style;
  const LM_height_source& relief; // resolved
  Surroundings& surroundings;
  bool isDeep; // whether heights keep more than 8 bits

  // Throws Failure when the surroundings do not fit, and adds to its notices what is done to them.
  void Check(const std::string& path, OpenedPhotograph& opened) const;
  // Lazy: decoded and lit when it is written. hasSourceFailed: as LitSettings'.
  vips::VImage Light(const std::string& path, const vips::VImage& planes,
                     const std::shared_ptr<std::atomic<bool>>& hasSourceFailed) const;
  // For the plug-in, which has only channels of 8 bits and the photograph's size: the surroundings
  // as such, and the style whose relief is one of them.
  std::pair<Surroundings, LM_style> Fitted(const std::string& path,
                                           const vips::VImage& planes) const;
};

} // namespace limn
