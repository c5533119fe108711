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

// Reads rows as heights and makes them fewer and shorter.
struct RowReader {
  LM_height_weights weights;
  LM_plane_reducer reducer;
  std::vector<uint16_t> row;

  template <class Sample> void Read(const void* pixels, int bands) {
    const auto* pixel = static_cast<const Sample*>(pixels);
    for (uint16_t& height : row) {
      height = LM_HeightOf(pixel, weights);
      pixel += bands;
    }
  }

  static int Take(VipsRegion* region, VipsRect* area, void* reader) {
    auto& self = *static_cast<RowReader*>(reader);
    for (int y = area->top; y < area->top + area->height; ++y) {
      const void* const pixels = VIPS_REGION_ADDR(region, 0, y);
      if (region->im->BandFmt == VIPS_FORMAT_USHORT)
        self.Read<uint16_t>(pixels, region->im->Bands);
      else
        self.Read<uint8_t>(pixels, region->im->Bands);
      self.reducer.Add(self.row.data());
    }
    return 0;
  }
};

LM_height_plane ReadPlane(const VImage& planes, const LM_height_weights& weights,
                          const LM_plane_size& size) {
  RowReader reader{weights,
                   {planes.width(), planes.height(), std::min(size.width, planes.width()),
                    std::min(size.height, planes.height())},
                   std::vector<uint16_t>(static_cast<size_t>(planes.width()))};
  if (vips_sink_disc(planes.get_image(), RowReader::Take, &reader) != 0)
    throw vips::VError();
  return reader.reducer.Take();
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

// The plane that the source names, in the size in which it is prepared.
LM_height_plane SourcePlane(const LM_height_source& source, const HeightSubject& subject) {
  const LM_plane_size size = LM_PreparedSize(source, subject.width, subject.height);
  if (source.kind == LM_height_kind::File)
    return LM_ScaledPlane(PlaneOf(*subject.file), size.width, size.height);
  const int shrink =
      ShrinkFor(std::max(subject.width, subject.height), std::max(size.width, size.height));
  std::vector<std::string> notices; // heights need no colour
  const VImage planes =
      subject.planes != nullptr
          ? ToRgbPlanes(*subject.planes, std::min(subject.planes->format(), VIPS_FORMAT_USHORT),
                        notices)
          : OpenPhotograph(subject.path, shrink, VIPS_FORMAT_NOTSET, VIPS_FORMAT_USHORT).planes;
  if (source.kind == LM_height_kind::Luminance)
    return ReadPlane(planes, LM_LUMINANCE, size);
  if (source.channel <= planes.bands())
    return ReadPlane(planes, {source.channel - 1}, size);
  const auto added = static_cast<size_t>(source.channel - planes.bands() - 1);
  if (added >= subject.added.size())
    throw Failure(ExitCode::BadInput, ShownName(subject.path) + ": has no channel " +
                                          std::to_string(source.channel) + " for its relief");
  return LM_ScaledPlane(PlaneOf(subject.added[added]), size.width, size.height);
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

void Release(void* enlarged) {
  delete static_cast<Enlarged*>(enlarged);
}

std::shared_ptr<const LM_height_plane> Held(LM_height_plane plane) {
  return std::make_shared<const LM_height_plane>(std::move(plane));
}

} // namespace

LM_height_plane HeightPlane(const LM_height_source& source, const HeightSubject& subject) {
  LM_height_plane plane = SourcePlane(source, subject);
  LM_PrepareHeights(source, std::max(subject.width, subject.height), plane);
  return plane;
}

VImage ShownHeights(std::shared_ptr<const LM_height_plane> plane, int width, int height) {
  if (width < plane->width || height < plane->height)
    plane = Held(
        LM_ScaledPlane(*plane, std::min(width, plane->width), std::min(height, plane->height)));
  auto owned = std::make_unique<Enlarged>(std::move(plane), width, height);
  Enlarged* const enlarged = owned.get();
  VipsImage* const output = vips_image_new();
  VImage result(output);
  g_object_set_data_full(G_OBJECT(output), "limn-heights", owned.release(), Release);
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
  LM_height_plane scaled = LM_ScaledPlane(PlaneOf(grey), width, height);
  grey.width = width;
  grey.height = height;
  grey.words = std::move(scaled.values);
  grey.pixels.resize(grey.words.size());
  std::transform(grey.words.begin(), grey.words.end(), grey.pixels.begin(),
                 [](uint16_t word) { return static_cast<uint8_t>(word >> 8); });
}

} // namespace limn
