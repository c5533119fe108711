#include "normal_map.h"

#include "colour_conversion.h"
#include "failure.h"
#include "image_library.h"
#include "image_source.h"

#include <cmath>

namespace limn {
namespace {

using vips::VImage;

// Maps have some vectors that mean nothing, between the parts of a drawing for instance.
constexpr double MOST_WITHOUT = 0.25;
// Of LM_FitTogether, below which a guess is said to be one.
constexpr double SURE = 0.1;

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
  const auto width = static_cast<size_t>(planes.width());
  LM_slopes slopes(planes.width(), planes.height());
  std::vector<float> normals(3 * width);
  size_t without = 0;
  // zero: of a component, which goes as far beyond it as to the largest sample.
  const auto read = [&](const auto* sample, float zero) {
    for (float& component : normals)
      component = (static_cast<float>(*sample++) - zero) / (zero - 1);
  };
  ForEachRow(planes, [&](int y, const VipsPel* row) {
    if (planes.format() == VIPS_FORMAT_USHORT)
      read(reinterpret_cast<const uint16_t*>(row), 32768);
    else
      read(row, 128);
    const size_t at = static_cast<size_t>(y) * width;
    without +=
        LM_SlopesOfNormals(normals.data(), width, greenIs, &slopes.across[at], &slopes.down[at]);
  });
  const double share = static_cast<double>(without) / static_cast<double>(slopes.across.size());
  if (share > MOST_WITHOUT)
    throw Failure(ExitCode::BadInput, path + ": is no normal map: of its vectors, " +
                                          std::to_string(std::lround(100 * share)) +
                                          " % do not point out of the picture");
  return slopes;
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
  return Guarded(shown, [&] {
    LM_slopes slopes = ReadSlopes(path, greenIs.value_or(LM_normals_y::Up));
    if (!greenIs)
      Guess(slopes, shown, notices);
    LM_integrated_heights made = LM_HeightsOfSlopes(slopes);
    if (made.share < 1)
      notices.push_back(shown + ": its heights are made " +
                        std::to_string(std::lround(1 / made.share)) +
                        " times lower, to fit 16 bits");
    return GreyOfWords(path, made.plane.width, made.plane.height, std::move(made.plane.values));
  });
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
