#include "lit_photograph.h"

#include "deep_lighting.h"
#include "image_source.h"

namespace limn {

HeightSubject SubjectOf(const std::string& path, int width, int height,
                        const Surroundings& surroundings) {
  return {path, width, height, surroundings.channels,
          surroundings.relief ? &*surroundings.relief : nullptr};
}

namespace {

vips::VImage InDepth(const vips::VImage& image, bool isDeep) {
  return isDeep ? image : image.cast(VIPS_FORMAT_UCHAR, vips::VImage::option()->set("shift", true));
}

} // namespace

LitSettings SettingsFor(Surroundings& surroundings, const HeightSubject& subject, bool isDeep) {
  LitSettings settings{};
  settings.area = surroundings.area;
  for (GreyImage& channel : surroundings.channels)
    settings.channels.push_back(channel.width == subject.width && channel.height == subject.height
                                    ? BandOf(channel, isDeep)
                                    : InDepth(ScaledImage(channel, subject), isDeep));
  if (surroundings.mask)
    settings.mask = BandOf(*surroundings.mask, false);
  return settings;
}

void LightingOfPhotographs::Check(const std::string& path, OpenedPhotograph& opened) const {
  const int width = opened.planes.width();
  const int height = opened.planes.height();
  CheckSurroundings(surroundings, width, height, ShownName(path));
  if (relief.kind == LM_height_kind::Style)
    NoteMissingRelief(style, opened.planes.bands() + static_cast<int>(surroundings.channels.size()),
                      opened.notices);
  for (const GreyImage& channel : surroundings.channels)
    NoteScaling(channel, width, height, opened.notices);
  if (surroundings.relief)
    NoteScaling(*surroundings.relief, width, height, opened.notices);
}

LitSettings
LightingOfPhotographs::Settings(const std::string& path, const vips::VImage& planes,
                                const std::shared_ptr<const LM_height_plane>& heights) const {
  const HeightSubject subject = SubjectOf(path, planes.width(), planes.height(), surroundings);
  LitSettings settings = SettingsFor(surroundings, subject, isDeep);
  settings.style = style;
  UseHeights(relief, planes.bands(), settings, [&] {
    return InDepth(heights ? ShownHeights(heights, subject.width, subject.height)
                           : HeightImage(relief, subject),
                   isDeep);
  });
  return settings;
}

std::pair<Surroundings, LM_style> LightingOfPhotographs::Fitted(const std::string& path,
                                                                const vips::VImage& planes) const {
  Surroundings fitted = surroundings;
  const LitSettings settings =
      LightingOfPhotographs{style, relief, surroundings, false}.Settings(path, planes);
  fitted.channels.resize(settings.channels.size());
  for (size_t i = 0; i < settings.channels.size(); ++i)
    if (GreyImage& channel = fitted.channels[i];
        channel.width != planes.width() || channel.height != planes.height())
      channel = {
          channel.file, planes.width(), planes.height(), DecodedPixels(settings.channels[i]), {}};
  return {std::move(fitted), settings.style};
}

} // namespace limn
