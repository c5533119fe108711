#include "lit_photograph.h"

#include "deep_lighting.h"
#include "image_source.h"

namespace limn {

HeightSubject SubjectOf(const std::string& path, int width, int height,
                        const Surroundings& surroundings) {
  return {path, width, height, surroundings.channels,
          surroundings.relief ? &*surroundings.relief : nullptr};
}

void SetChannels(const LM_height_source& source, const HeightSubject& subject,
                 std::vector<GreyImage>& added, int numPlanes, bool isDeep, LitSettings& settings,
                 const std::shared_ptr<const LM_height_plane>& heights) {
  const auto asDeep = [isDeep](const vips::VImage& image) {
    return isDeep ? image
                  : image.cast(VIPS_FORMAT_UCHAR, vips::VImage::option()->set("shift", true));
  };
  settings.channels.clear();
  for (GreyImage& channel : added)
    settings.channels.push_back(channel.width == subject.width && channel.height == subject.height
                                    ? BandOf(channel, isDeep)
                                    : asDeep(ScaledImage(channel, subject)));
  UseHeights(source, numPlanes, settings, [&] {
    return asDeep(heights ? ShownHeights(heights, subject.width, subject.height)
                          : HeightImage(source, subject));
  });
}

void NoteScaled(const Surroundings& surroundings, int width, int height,
                std::vector<std::string>& notices) {
  const auto note = [&](const GreyImage& grey) {
    if (grey.width != width || grey.height != height)
      notices.push_back(ScaledNotice(grey, width, height));
  };
  for (const GreyImage& channel : surroundings.channels)
    note(channel);
  if (surroundings.relief)
    note(*surroundings.relief);
}

void LightingOfPhotographs::Check(const std::string& path, OpenedPhotograph& opened) const {
  const int width = opened.planes.width();
  const int height = opened.planes.height();
  CheckSurroundings(surroundings, width, height, ShownName(path));
  if (relief.kind == LM_height_kind::Style)
    NoteMissingRelief(style, opened.planes.bands() + static_cast<int>(surroundings.channels.size()),
                      opened.notices);
  NoteScaled(surroundings, width, height, opened.notices);
}

vips::VImage
LightingOfPhotographs::Light(const std::string& path, const vips::VImage& planes,
                             const std::shared_ptr<std::atomic<bool>>& hasSourceFailed) const {
  LitSettings settings = SettingsFor(surroundings, isDeep);
  settings.style = style;
  SetChannels(relief, SubjectOf(path, planes.width(), planes.height(), surroundings),
              surroundings.channels, planes.bands(), isDeep, settings);
  settings.hasSourceFailed = hasSourceFailed;
  return LitImage(planes, settings);
}

std::pair<Surroundings, LM_style> LightingOfPhotographs::Fitted(const std::string& path,
                                                                const vips::VImage& planes) const {
  Surroundings fitted = surroundings;
  const HeightSubject subject = SubjectOf(path, planes.width(), planes.height(), surroundings);
  LitSettings settings{};
  settings.style = style;
  SetChannels(relief, subject, surroundings.channels, planes.bands(), false, settings);
  fitted.channels.resize(settings.channels.size());
  for (size_t i = 0; i < settings.channels.size(); ++i)
    if (fitted.channels[i].width != subject.width || fitted.channels[i].height != subject.height)
      fitted.channels[i] = {fitted.channels[i].file,
                            subject.width,
                            subject.height,
                            DecodedPixels(settings.channels[i]),
                            {}};
  return {std::move(fitted), settings.style};
}

} // namespace limn
