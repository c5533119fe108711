// Lighting a photograph while it is decoded, in a style, with heights from wherever they come.
#pragma once

#include "lighting.h"
#include "lit_image.h"

#include "LM_height_source.h"
#include "height_image.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>
#include <vips/vips8>

namespace limn {

// What the heights of a photograph are made from. The surroundings are borrowed.
HeightSubject SubjectOf(const std::string& path, int width, int height,
                        const Surroundings& surroundings);

// The surroundings of such a photograph as settings for it, which borrow them: channels are made
// its size. What lights is still to be set. isDeep: whether channels keep more than 8 bits.
LitSettings SettingsFor(Surroundings& surroundings, const HeightSubject& subject, bool isDeep);

struct LightingOfPhotographs {
  const LM_style& style;
  const LM_height_source& relief; // resolved
  Surroundings& surroundings;
  bool isDeep; // whether heights keep more than 8 bits

  // Throws Failure when the surroundings do not fit, and adds to its notices what is done to them.
  void Check(const std::string& path, OpenedPhotograph& opened) const;
  // Of a photograph that is lit while it is decoded. heights: made before, of this relief; null:
  // they are made here.
  LitSettings Settings(const std::string& path, const vips::VImage& planes,
                       const std::shared_ptr<const LM_height_plane>& heights = nullptr) const;
  // For the plug-in, which has only channels of 8 bits and the photograph's size: the surroundings
  // as such, and the style whose relief is one of them.
  std::pair<Surroundings, LM_style> Fitted(const std::string& path,
                                           const vips::VImage& planes) const;
};

} // namespace limn
