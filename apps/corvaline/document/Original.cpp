#include "Original.h"

#include "ImageFiles.h"

#include "deep_lighting.h"
#include "height_image.h"
#include "image_library.h"

#include <QColorSpace>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

namespace editor {

using vips::VImage;

static QColorTransform ToScreen(const VImage& metadata) {
  if (metadata.is_null() || metadata.get_typeof(VIPS_META_ICC_NAME) == 0)
    return {};
  size_t size = 0;
  const void* const profile = metadata.get_blob(VIPS_META_ICC_NAME, &size);
  const QColorSpace space = QColorSpace::fromIccProfile(
      QByteArray(static_cast<const char*>(profile), static_cast<qsizetype>(size)));
  return space.isValid() ? space.transformationToColorSpace(QColorSpace::SRgb) : QColorTransform();
}

VImage BandOf(const QImage& mask) {
  return VImage::new_from_memory(
             const_cast<uint8_t*>(mask.constBits()), static_cast<size_t>(mask.sizeInBytes()),
             static_cast<int>(mask.bytesPerLine()), mask.height(), 1, VIPS_FORMAT_UCHAR)
      .extract_area(0, 0, mask.width(), mask.height());
}

void Original::take(limn::Photograph taken, ImageHalves halves) {
  noteChange();
  _halves = std::move(halves);
  photograph = std::move(taken);
  channels.clear();
  toScreen = ToScreen(photograph.metadata);
}

void Original::noteChange() {
  const std::lock_guard lock(_making);
  _halves = {};
  _levels = {};
  _plane = nullptr;
}

const ImageLevels& Original::levels() {
  const std::lock_guard lock(_making);
  if (_levels.isNull())
    _levels = ImageLevels(photograph, std::exchange(_halves, {}));
  return _levels;
}

std::shared_ptr<const LM_height_plane> Original::heights(const LM_height_source& source) {
  const std::lock_guard lock(_making);
  if (_plane != nullptr && source == _source)
    return _plane;
  limn::GreyImage grey;
  const bool isFile = source.kind == LM_height_kind::File;
  if (isFile) {
    grey = OpenChannelFile(QString::fromStdString(source.file));
    limn::CheckShape(grey, photograph.width, photograph.height, file);
  }
  const VImage planes = limn::PlanesOf(photograph);
  const limn::HeightSubject subject{
      file,     photograph.width,         photograph.height,
      channels, isFile ? &grey : nullptr, file.empty() ? &planes : nullptr};
  _plane = std::make_shared<LM_height_plane>(HeightsOf(source, subject));
  _source = source;
  return _plane;
}

bool Original::isChannel(const LM_height_source& source) const {
  return source.kind == LM_height_kind::Channel && LM_IsPlain(source) &&
         source.channel <= numChannels();
}

VImage Original::lit(const Recipe& recipe, const Selection& selection) {
  limn::LitSettings settings{};
  settings.parameters = recipe.block;
  if (recipe.lights)
    settings.style = *recipe.lights;
  const QRect& area = selection.area;
  if (!area.isEmpty())
    settings.area = limn_area{area.x(), area.y(), area.width(), area.height()};
  if (!selection.mask.isNull())
    settings.mask = BandOf(selection.mask);
  for (limn::GreyImage& channel : channels)
    settings.channels.push_back(limn::BandOf(channel, true));
  const LM_height_source source = LM_ResolvedSource(recipe.relief, settings.style.bumpChannel != 0);
  if (recipe.lights)
    limn::UseHeights(source, photograph.numPlanes, settings, [&] {
      return limn::ShownHeights(heights(source), photograph.width, photograph.height);
    });
  return limn::LitPlanes(photograph, settings, file);
}

limn::ReducedPhotograph Original::reduced(const QRect& area, const QImage& mask,
                                          const LM_height_source& relief, int longestSide) {
  limn::ReducedPhotograph small;
  small.fullWidth = area.width();
  small.fullHeight = area.height();
  limn::FitReduction(small, longestSide);
  const QSize to(small.width, small.height);
  const auto partOf = [&](const VImage& band) {
    return Resized(band.extract_area(area.x(), area.y(), area.width(), area.height()), to);
  };
  VImage planes = levels().part(area, to);
  for (limn::GreyImage& channel : channels)
    planes = planes.bandjoin(partOf(limn::BandOf(channel, false)));
  small.numPlanes = planes.bands();
  small.pixels = limn::DecodedPixels(planes);
  if (!mask.isNull())
    small.mask = limn::DecodedPixels(partOf(BandOf(mask)));
  small.relief = relief;
  // As styles with relief have it; the others do not look at it.
  const LM_height_source source = LM_ResolvedSource(relief, true);
  if (source.kind == LM_height_kind::Style || source.kind == LM_height_kind::None ||
      isChannel(source))
    return small;
  const auto share = [](int full, int part, int reduced) {
    return std::max(reduced, static_cast<int>(std::lround(double{1} * full * reduced / part)));
  };
  const QSize whole(share(photograph.width, area.width(), to.width()),
                    share(photograph.height, area.height(), to.height()));
  const int left = std::min(area.x() * to.width() / area.width(), whole.width() - to.width());
  const int top = std::min(area.y() * to.height() / area.height(), whole.height() - to.height());
  const std::vector<uint8_t> bytes =
      limn::DecodedPixels(limn::ShownHeights(heights(source), whole.width(), whole.height())
                              .extract_area(left, top, to.width(), to.height()));
  small.heights.resize(bytes.size() / sizeof(uint16_t));
  std::memcpy(small.heights.data(), bytes.data(), bytes.size());
  return small;
}

} // namespace editor
