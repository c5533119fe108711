#include "lit_photograph.h"

#include "deep_lighting.h"
#include "image_source.h"

namespace limn {

HeightSubject SubjectOf(const std::string& path, int width, int height,
                        const Surroundings& surroundings) {
  return {path, width, height, surroundings.channels,
          surroundings.relief ? &*surroundings.relief : nullptr};
}

// The channels that follow a photograph's own, made its size, and the heights that its relief is
// taken from, if they are none of these. style: gets the channel that they are.
std::vector<vips::VImage> ChannelsFor(const LM_height_source& source, const HeightSubject& subject,
                                      std::vector<GreyImage>& added, int numPlanes, bool isDeep,
                                      LM_style& style) {
  const auto asDeep = [isDeep](const vips::VImage& image) {
    return isDeep ? image
                  : image.cast(VIPS_FORMAT_UCHAR, vips::VImage::option()->set("shift", true));
  };
  std::vector<vips::VImage> channels;
  for (GreyImage& channel : added)
    channels.push_back(channel.width == subject.width && channel.height == subject.height
                           ? BandOf(channel, isDeep)
                           : asDeep(ScaledImage(channel, subject)));
  const int numChannels = numPlanes + static_cast<int>(channels.size());
  if (source.kind == LM_height_kind::None) {
    style.bumpChannel = 0;
  } else if (source.kind == LM_height_kind::Channel && source.channel <= numChannels &&
             LM_IsPlain(source)) {
    style.bumpChannel = static_cast<int16_t>(source.channel);
  } else if (source.kind != LM_height_kind::Style) {
    channels.push_back(asDeep(HeightImage(source, subject)));
    style.bumpChannel = static_cast<int16_t>(numChannels + 1);
  }
  return channels;
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
  settings.channels =
      ChannelsFor(relief, SubjectOf(path, planes.width(), planes.height(), surroundings),
                  surroundings.channels, planes.bands(), isDeep, settings.style);
  settings.hasSourceFailed = hasSourceFailed;
  return LitImage(planes, settings);
}

} // namespace limn
