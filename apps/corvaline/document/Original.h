// What light falls on: the picture's pixels, further channels, and what is made of both.
#pragma once

#include "EditorRecipe.h"
#include "ImageLevels.h"

#include "LM_height_plane.h"
#include "image_file.h"
#include "lit_image.h"
#include "reduced_photograph.h"

#include <QColorTransform>

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace editor {

// Light never changes it. What is made of it is made when it is first asked for, on whatever thread
// that is; while others ask, whoever changes the pixels or the channels keeps them away.
class Original {
public:
  limn::Photograph photograph;
  std::vector<limn::GreyImage> channels; // of the photograph's size, numbered after its own planes
  // The file that has these very pixels; empty when none has them.
  std::string file;
  // From the photograph's profile, if it has one that can be read, to the screen's, which is taken
  // to be sRGB.
  QColorTransform toScreen;

  QSize size() const { return {photograph.width, photograph.height}; }
  int numChannels() const { return photograph.numPlanes + static_cast<int>(channels.size()); }
  // Becomes the photograph, without further channels. halves: what there is of its own.
  void take(limn::Photograph taken, ImageHalves halves);
  // To be called when pixels or channels have changed.
  void noteChange();

  // In 8 bits, all planes. Throws vips::VError.
  const ImageLevels& levels();
  // Of a resolved source that is none of the channels. Throws limn::Failure.
  std::shared_ptr<const LM_height_plane> heights(const LM_height_source& source);

  // Whether a resolved source is one of the channels, as it is.
  bool isChannel(const LM_height_source& source) const;

  // The picture lit, in its own depth, of the same bytes as limn apply. The
  // original and the mask's pixels are borrowed. Throws limn::Failure.
  vips::VImage lit(const Recipe& recipe, const Selection& selection);

  // `area` of the picture and of its further channels, of the mask, and of the heights of `relief`,
  // its longer side reduced to `longestSide`. Throws as lit.
  limn::ReducedPhotograph reduced(const QRect& area, const QImage& mask,
                                  const LM_height_source& relief, int longestSide);

private:
  std::mutex _making;
  ImageHalves _halves; // until they are levels
  ImageLevels _levels;
  LM_height_source _source; // of the plane
  std::shared_ptr<const LM_height_plane> _plane;
};

// A mask as one band, its pixels borrowed.
vips::VImage BandOf(const QImage& mask);

} // namespace editor
