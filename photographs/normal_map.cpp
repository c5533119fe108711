#include "normal_map.h"

#include "colour_conversion.h"
#include "failure.h"
#include "image_library.h"
#include "image_source.h"

#include <algorithm>
#include <cmath>

namespace limn {
namespace {

using vips::VImage;

// Maps have some vectors that mean nothing, between the parts of a drawing for instance.
constexpr double MOST_WITHOUT = 0.25;
// Of LM_FitTogether, below which a guess is said to be one.
constexpr double SURE = 0.1;

struct SlopeReader {
  LM_slopes slopes;
  LM_normals_y greenIs;
  std::vector<float> normals;
  size_t without = 0;

  // zero: of a component, which goes as far beyond it as to the largest sample.
  template <class Sample> void Read(const void* pixels, float zero) {
    const auto* sample = static_cast<const Sample*>(pixels);
    for (float& component : normals)
      component = (static_cast<float>(*sample++) - zero) / (zero - 1);
  }

  static int Take(VipsRegion* region, VipsRect* area, void* reader) {
    auto& self = *static_cast<SlopeReader*>(reader);
    const auto width = static_cast<size_t>(self.slopes.width);
    for (int y = area->top; y < area->top + area->height; ++y) {
      const void* const pixels = VIPS_REGION_ADDR(region, 0, y);
      if (region->im->BandFmt == VIPS_FORMAT_USHORT)
        self.Read<uint16_t>(pixels, 32768);
      else
        self.Read<uint8_t>(pixels, 128);
      const size_t at = static_cast<size_t>(y) * width;
      self.without += LM_SlopesOfNormals(self.normals.data(), width, self.greenIs,
                                         &self.slopes.across[at], &self.slopes.down[at]);
    }
    return 0;
  }
};

VImage Components(const std::string& path, const VImage& image) {
  if (vips_image_get_orientation(image.get_image()) > 1)
    throw Failure(ExitCode::BadInput,
                  path + ": is turned by its tag, with which its vectors do not turn");
  VImage planes = ToPlainPlanes(image, image.format() == VIPS_FORMAT_UCHAR ? VIPS_FORMAT_UCHAR
                                                                           : VIPS_FORMAT_USHORT);
  if (planes.bands() != 3)
    throw Failure(ExitCode::BadInput, path + ": is no normal map, which has red, green and blue");
  return planes;
}

LM_slopes ReadSlopes(const std::string& path, LM_normals_y greenIs) {
  const VImage planes = Components(path, OpenImage(path));
  SlopeReader reader{{planes.width(), planes.height()},
                     greenIs,
                     std::vector<float>(3 * static_cast<size_t>(planes.width()))};
  if (vips_sink_disc(planes.get_image(), SlopeReader::Take, &reader) != 0)
    throw vips::VError();
  const double share =
      static_cast<double>(reader.without) / static_cast<double>(reader.slopes.across.size());
  if (share > MOST_WITHOUT)
    throw Failure(ExitCode::BadInput, path + ": is no normal map: of its vectors, " +
                                          std::to_string(std::lround(100 * share)) +
                                          " % do not point out of the picture");
  return std::move(reader.slopes);
}

// Turns the slopes over if they fit together better so.
void Guess(LM_slopes& slopes, const std::string& path, std::vector<std::string>& notices) {
  const double fit = LM_FitTogether(slopes);
  if (fit < 0)
    for (float& slope : slopes.down)
      slope = -slope;
  notices.push_back(path + ": its green is taken for " + (fit < 0 ? "down" : "up") +
                    (std::abs(fit) < SURE ? ", a mere guess; --normals-y says it" : ""));
}

} // namespace

GreyImage ReadNormalMap(const std::string& path, std::optional<LM_normals_y> greenIs,
                        std::vector<std::string>& notices) {
  const std::string shown = ShownName(path);
  const Complaints complaints;
  try {
    LM_slopes slopes = ReadSlopes(path, greenIs.value_or(LM_normals_y::Up));
    complaints.Check(ExitCode::BadInput, shown);
    if (!greenIs)
      Guess(slopes, shown, notices);
    LM_integrated_heights made = LM_HeightsOfSlopes(slopes);
    if (made.share < 1)
      notices.push_back(shown + ": its heights are made " +
                        std::to_string(std::lround(1 / made.share)) +
                        " times lower, to fit 16 bits");
    GreyImage grey;
    grey.file = path;
    grey.width = made.plane.width;
    grey.height = made.plane.height;
    grey.words = std::move(made.plane.values);
    grey.pixels.resize(grey.words.size());
    std::transform(grey.words.begin(), grey.words.end(), grey.pixels.begin(),
                   [](uint16_t word) { return static_cast<uint8_t>(word >> 8); });
    return grey;
  } catch (...) {
    throw CaughtLibraryFailure(ExitCode::BadInput, shown);
  }
}

VImage NormalMapOf(const VImage& heights, LM_normals_y greenIs) {
  LM_height_plane plane(heights.width(), heights.height());
  heights.write(VImage::new_from_memory(plane.values.data(), 2 * plane.values.size(), plane.width,
                                        plane.height, 1, VIPS_FORMAT_USHORT));
  VImage normals = VImage::new_memory();
  vips_image_init_fields(normals.get_image(), plane.width, plane.height, 3, VIPS_FORMAT_USHORT,
                         VIPS_CODING_NONE, VIPS_INTERPRETATION_RGB16, 1, 1);
  std::vector<uint16_t> row(3 * static_cast<size_t>(plane.width));
  for (int y = 0; y < plane.height; ++y) {
    LM_NormalsOfRow(plane, y, greenIs, row.data());
    if (vips_image_write_line(normals.get_image(), y, reinterpret_cast<VipsPel*>(row.data())) != 0)
      throw vips::VError();
  }
  return normals;
}

} // namespace limn
