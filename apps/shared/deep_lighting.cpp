#include "deep_lighting.h"

#include "image_file.h"
#include "image_library.h"

#include "LM_block.h"

#include <cstring>
#include <utility>

namespace limn {

ProgressAsker::ProgressAsker(vips::VImage image, std::function<bool(double)> goOn)
    : _image(std::move(image)), _goOn(std::move(goOn)) {
  vips_image_set_progress(_image.get_image(), TRUE);
  g_signal_connect(_image.get_image(), "eval", G_CALLBACK(_Ask), this);
}

ProgressAsker::~ProgressAsker() {
  g_signal_handlers_disconnect_by_data(_image.get_image(), this);
}

void ProgressAsker::_Ask(VipsImage* image, VipsProgress* progress, ProgressAsker* asker) {
  if (asker->_isStopped || asker->_goOn(progress->percent / 100.0))
    return;
  asker->_isStopped = true;
  vips_image_set_kill(image, TRUE);
}

vips::VImage BandOf(GreyImage& grey, bool isDeep) {
  if (isDeep && !grey.words.empty())
    return vips::VImage::new_from_memory(grey.words.data(), grey.words.size() * sizeof(uint16_t),
                                         grey.width, grey.height, 1, VIPS_FORMAT_USHORT);
  return vips::VImage::new_from_memory(grey.pixels.data(), grey.pixels.size(), grey.width,
                                       grey.height, 1, VIPS_FORMAT_UCHAR);
}

void UseHeights(const LM_height_source& source, int numPlanes, LitSettings& settings,
                const std::function<vips::VImage()>& heights) {
  const int numChannels = numPlanes + static_cast<int>(settings.channels.size());
  if (source.kind == LM_height_kind::None) {
    settings.style.bumpChannel = 0;
  } else if (source.kind == LM_height_kind::Channel && source.channel <= numChannels &&
             LM_IsPlain(source)) {
    settings.style.bumpChannel = static_cast<int16_t>(source.channel);
  } else if (source.kind != LM_height_kind::Style) {
    settings.channels.push_back(heights());
    settings.style.bumpChannel = static_cast<int16_t>(numChannels + 1);
  }
}

std::shared_ptr<const foo> ParametersOfBlock(const std::vector<uint8_t>& block) {
  if (block.size() < sizeof(foo))
    return nullptr;
  auto parameters = std::make_shared<foo>();
  std::memcpy(parameters.get(), block.data(), sizeof *parameters);
  if (parameters->magic != LM_PARAMS_MAGIC || parameters->version != LM_PARAMS_VERSION)
    return nullptr;
  return parameters;
}

vips::VImage LitPlanes(Photograph& photograph, const LitSettings& settings,
                       const std::string& file) {
  try {
    return LitImage(PlanesOf(photograph), settings);
  } catch (...) {
    throw CaughtLibraryFailure(ExitCode::Refused, file);
  }
}

std::vector<uint8_t> LitSamples(const vips::VImage& image, const limn_area& part,
                                const std::string& file, const std::function<bool(double)>& goOn) {
  if (!goOn(0))
    return {};
  bool isStopped = false;
  try {
    const vips::VImage lit = image.extract_area(part.x, part.y, part.width, part.height);
    const ProgressAsker asker(lit, [&](double share) { return !(isStopped = !goOn(share)); });
    std::vector<uint8_t> samples = DecodedPixels(lit);
    if (isStopped) // at its very end
      samples.clear();
    return samples;
  } catch (...) {
    const Failure failure = CaughtLibraryFailure(ExitCode::Refused, file);
    if (isStopped)
      return {};
    throw failure;
  }
}

} // namespace limn
