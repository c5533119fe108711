#include "height_image.h"

#include "colour_conversion.h"
#include "failure.h"
#include "image_source.h"

#include "LM_height_samples.h"
#include "LM_plane_scaling.h"

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace limn {
namespace {

using vips::VImage;

// Reads rows as heights, makes them fewer and shorter, and prepares them as they come: on another
// thread than the one that decodes.
LM_height_plane HeightsOfRows(const VImage& planes, const LM_height_weights& weights,
                              const LM_height_source& source, int pictureSide,
                              const LM_plane_size& size) {
  LM_plane_reducer reducer(planes.width(), planes.height(), std::min(size.width, planes.width()),
                           std::min(size.height, planes.height()));
  LM_height_maker maker(source, pictureSide, reducer.Plane());
  std::vector<uint16_t> heights(static_cast<size_t>(planes.width()));
  ForEachRow(planes, [&](int, const VipsPel* row) {
    if (planes.format() == VIPS_FORMAT_USHORT)
      LM_HeightsOfPixels(reinterpret_cast<const uint16_t*>(row), planes.bands(), weights,
                         heights.data(), heights.size());
    else
      LM_HeightsOfPixels(row, planes.bands(), weights, heights.data(), heights.size());
    reducer.Add(heights.data());
    maker.Advance(reducer.NumRows());
  });
  return reducer.Take();
}

LM_height_plane PlaneOf(const GreyImage& grey) {
  LM_height_plane plane;
  plane.width = grey.width;
  plane.height = grey.height;
  plane.values = grey.words;
  if (!grey.words.empty())
    return plane;
  plane.values.reserve(grey.pixels.size());
  for (const uint8_t value : grey.pixels)
    plane.values.push_back(static_cast<uint16_t>(value * 257));
  return plane;
}

// That the source names, which the image's own bands do not have.
const GreyImage& AddedChannel(const HeightSubject& subject, const LM_height_source& source,
                              int numBands) {
  const auto added = static_cast<size_t>(source.channel - numBands - 1);
  if (added < subject.added.size())
    return subject.added[added];
  throw Failure(ExitCode::BadInput, ShownName(subject.path) + ": has no channel " +
                                        std::to_string(source.channel) + " for its relief");
}

// A plane and how it is made larger; the image that shows it owns it.
struct Enlarged {
  std::shared_ptr<const LM_height_plane> plane;
  LM_plane_enlarger enlarger;

  Enlarged(std::shared_ptr<const LM_height_plane> made, int width, int height)
      : plane(std::move(made)), enlarger(*plane, width, height) {}
};

int Fill(VipsRegion* region, void*, void* enlarged, void*, gboolean*) try {
  const auto& source = *static_cast<const Enlarged*>(enlarged);
  const VipsRect& rect = region->valid;
  std::vector<double> scratch;
  for (int y = rect.top; y < rect.top + rect.height; ++y)
    source.enlarger.MakeRow(y, rect.left, rect.width,
                            reinterpret_cast<uint16_t*>(VIPS_REGION_ADDR(region, rect.left, y)),
                            scratch);
  return 0;
} catch (const std::bad_alloc&) {
  vips_error("limn", "out of memory");
  return -1;
}

std::shared_ptr<const LM_height_plane> Held(LM_height_plane plane) {
  return std::make_shared<const LM_height_plane>(std::move(plane));
}

} // namespace

LM_height_plane HeightPlane(const LM_height_source& source, const HeightSubject& subject) {
  const int side = std::max(subject.width, subject.height);
  const LM_plane_size size = LM_PreparedSize(source, subject.width, subject.height);
  const auto heightsOf = [&](const GreyImage& grey) {
    LM_height_plane plane = LM_ScaledPlane(PlaneOf(grey), size.width, size.height);
    LM_PrepareHeights(source, side, plane);
    return plane;
  };
  if (source.kind == LM_height_kind::File)
    return heightsOf(*subject.file);
  std::vector<std::string> notices; // heights need no colour
  const VImage planes =
      subject.planes != nullptr
          ? ToRgbPlanes(*subject.planes, std::min(subject.planes->format(), VIPS_FORMAT_USHORT),
                        notices)
          : OpenPhotograph(subject.path, ShrinkFor(side, std::max(size.width, size.height)),
                           VIPS_FORMAT_NOTSET, VIPS_FORMAT_USHORT)
                .planes;
  const bool isLuminance = source.kind == LM_height_kind::Luminance;
  if (!isLuminance && source.channel > planes.bands())
    return heightsOf(AddedChannel(subject, source, planes.bands()));
  return HeightsOfRows(planes, isLuminance ? LM_LUMINANCE : LM_height_weights{source.channel - 1},
                       source, side, size);
}

VImage ShownHeights(std::shared_ptr<const LM_height_plane> plane, int width, int height) {
  if (width < plane->width || height < plane->height)
    plane = Held(
        LM_ScaledPlane(*plane, std::min(width, plane->width), std::min(height, plane->height)));
  auto owned = std::make_unique<Enlarged>(std::move(plane), width, height);
  Enlarged* const enlarged = owned.get();
  VipsImage* const output = vips_image_new();
  VImage result(output);
  g_object_set_data_full(G_OBJECT(output), "limn-heights", owned.release(),
                         [](void* kept) { delete static_cast<Enlarged*>(kept); });
  vips_image_init_fields(output, width, height, 1, VIPS_FORMAT_USHORT, VIPS_CODING_NONE,
                         VIPS_INTERPRETATION_GREY16, 1, 1);
  if (vips_image_pipelinev(output, VIPS_DEMAND_STYLE_ANY, nullptr) != 0 ||
      vips_image_generate(output, nullptr, Fill, nullptr, enlarged, nullptr) != 0)
    throw vips::VError();
  return result;
}

VImage HeightImage(const LM_height_source& source, const HeightSubject& subject) {
  return ShownHeights(Held(HeightPlane(source, subject)), subject.width, subject.height);
}

VImage ScaledImage(const GreyImage& grey, const HeightSubject& subject) {
  return ShownHeights(Held(PlaneOf(grey)), subject.width, subject.height);
}

void CheckShape(const GreyImage& grey, int width, int height, const std::string& file) {
  const int64_t wide = int64_t{grey.width} * height;
  const int64_t high = int64_t{grey.height} * width;
  if (100 * std::abs(wide - high) <= high)
    return;
  const auto size = [](int w, int h) { return std::to_string(w) + " × " + std::to_string(h); };
  throw Failure(ExitCode::BadInput, grey.file + ": is " + size(grey.width, grey.height) +
                                        " pixels, and " + file + " is " + size(width, height) +
                                        ", of another shape");
}

void ScaleGrey(GreyImage& grey, int width, int height, const std::string& file) {
  if (grey.width == width && grey.height == height)
    return;
  CheckShape(grey, width, height, file);
  grey = GreyOfWords(std::move(grey.file), width, height,
                     LM_ScaledPlane(PlaneOf(grey), width, height).values);
}

} // namespace limn
