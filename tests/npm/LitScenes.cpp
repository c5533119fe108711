// lit_scenes COUNT: writes that many generated scenes to the standard output, each as the package's
// user would hand it over, and what the C library makes of it. After twelve
// little-endian words (width, height, channels, kind, area x, y, width and height, kind of the
// relief plane or -1, length of the style, 0, 0) come style, pixels, relief plane and lit pixels.
#include "LM_image.h"
#include "LM_style_codec.h"
#include "LM_style_json.h"
#include "SceneGenerator.h"
#include "limn.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

// fraction: added to every length that is not at the end of its range.
LM_style StyleOf(const Scene& scene, int reliefChannel, float fraction) {
  const auto lengthOf = [fraction](int16_t length) {
    return static_cast<float>(length) + (std::abs(length) < 32000 ? fraction : 0.0F);
  };
  const auto vectorOf = [lengthOf](ReferencePoint point) {
    return LM_vector2f{lengthOf(point.h), lengthOf(point.v)};
  };
  const ReferenceSettings& settings = scene.settings;
  LM_style style = {};
  style.version = LM_STYLE_VERSION;
  style.bumpChannel = static_cast<int16_t>(reliefChannel);
  style.whiteIsHigh = settings.whiteIsHigh;
  style.bumpAmplitude = settings.bumpAmplitude;
  std::memcpy(&style.ambientColor, settings.ambientColor.data(), sizeof style.ambientColor);
  style.material = settings.material, style.gloss = settings.gloss;
  style.exposure = settings.exposure, style.ambientBrightness = settings.ambience;
  style.worldUnit = 140;
  for (const ReferenceLight& light : settings.lights) {
    LM_style_light& out = style.lights[style.lightsRead++];
    std::memcpy(&out.color, light.color.data(), sizeof out.color);
    out.intensity = light.intensity, out.spread = light.spread;
    out.on = light.on;
    out.type = light.type == REFERENCE_OMNI   ? LM_STYLE_OMNI
               : light.type == REFERENCE_SPOT ? LM_STYLE_SPOT
                                              : LM_STYLE_DIRECTIONAL;
    out.center = vectorOf(light.center);
    out.handle1 = vectorOf(light.handle1), out.handle2 = vectorOf(light.handle2);
    out.radius = lengthOf(light.radius);
  }
  style.numLights = style.lightsRead;
  return style;
}

// Components of this kind, `apart` of them a pixel. Floats go beyond black and white.
std::vector<uint8_t> Deepen(const std::vector<uint8_t>& bytes, LM_pixel_kind kind) {
  const auto size = static_cast<size_t>(LM_ComponentBytes(kind));
  std::vector<uint8_t> out(bytes.size() * size);
  for (size_t i = 0; i < bytes.size(); ++i) {
    const auto word = static_cast<uint16_t>((bytes[i] * 257) ^ (i & 0x7F));
    const float number = static_cast<float>(bytes[i]) * (1.5F / 255.0F) - 0.25F;
    if (kind == LM_pixel_kind::Bytes)
      out[i] = bytes[i];
    else if (kind == LM_pixel_kind::Words)
      std::memcpy(&out[i * size], &word, size);
    else
      std::memcpy(&out[i * size], &number, size);
  }
  return out;
}

void Write(const void* bytes, size_t size) {
  if (std::fwrite(bytes, 1, size, stdout) != size)
    std::exit(1);
}

// Every third scene is of one kind; relief is a plane of its own, of any kind, or the fourth
// channel. Every other style is JSON and has fractions, the others are files. False for a scene
// without lights, which is not written.
bool WriteScene(uint64_t number) {
  const Scene scene = MakeScene(number);
  const auto kind = static_cast<LM_pixel_kind>(number % 3);
  const auto reliefKind = static_cast<LM_pixel_kind>(number / 3 % 3);
  const bool hasRelief = !scene.heights.empty();
  const bool ownRelief = hasRelief && number % 4 == 3;
  const int channels = ownRelief || number % 5 == 0 ? 4 : 3;
  std::vector<uint8_t> bytes;
  for (size_t i = 0; i < scene.pixels.size() / 3; ++i) {
    bytes.insert(bytes.end(), &scene.pixels[i * 3], &scene.pixels[i * 3] + 3);
    if (channels == 4)
      bytes.push_back(ownRelief ? scene.heights[i] : uint8_t{200});
  }
  const std::vector<uint8_t> pixels = Deepen(bytes, kind);
  const std::vector<uint8_t> relief =
      hasRelief && !ownRelief ? Deepen(scene.heights, reliefKind) : std::vector<uint8_t>();
  const bool isJson = number % 2 == 0;
  const float fraction = isJson ? static_cast<float>(number % 100) / 100.0F : 0.0F;
  const LM_style style = StyleOf(scene, ownRelief ? 4 : 0, fraction);
  if (style.lightsRead == 0)
    return false;

  uint8_t encoded[LM_STYLE_MAX_BYTES];
  const std::string file = isJson ? LM_StyleToJson(style)
                                  : std::string(encoded, encoded + LM_EncodeStyle(style, encoded));
  std::vector<uint8_t> lit(pixels.size());
  const limn_area area = {scene.area.left, scene.area.top, scene.area.right - scene.area.left,
                          scene.area.bottom - scene.area.top};
  limn_picture picture = {};
  picture.width = scene.width, picture.height = scene.height, picture.channels = channels;
  picture.kind = static_cast<limn_kind>(kind);
  picture.relief_kind = static_cast<limn_kind>(reliefKind);
  picture.source = pixels.data(), picture.output = lit.data();
  picture.relief = relief.empty() ? nullptr : relief.data();
  picture.area = area;
  limn_error error;
  limn_settings* settings = limn_settings_from_memory(file.data(), file.size(), &error);
  if (settings == nullptr || limn_light(settings, &picture, nullptr, &error) != LIMN_OK) {
    std::fprintf(stderr, "%s: %s\n", scene.name.c_str(), error.text);
    std::exit(1);
  }
  limn_settings_free(settings);
  const int32_t words[10] = {scene.width,
                             scene.height,
                             channels,
                             static_cast<int32_t>(kind),
                             area.x,
                             area.y,
                             area.width,
                             area.height,
                             relief.empty() ? -1 : static_cast<int32_t>(reliefKind),
                             static_cast<int32_t>(file.size())};
  Write(words, sizeof words);
  Write(file.data(), file.size());
  Write(pixels.data(), pixels.size());
  Write(relief.data(), relief.size());
  Write(lit.data(), lit.size());
  return true;
}

} // namespace

int main(int argumentCount, char** arguments) {
  uint64_t count = argumentCount == 2 ? std::strtoull(arguments[1], nullptr, 10) : 0;
  for (uint64_t number = 0; count > 0; ++number)
    count -= WriteScene(number) ? 1 : 0;
  return std::fflush(stdout) == 0 ? 0 : 1;
}
