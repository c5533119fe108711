// lit_scenes COUNT: writes that many generated scenes to the standard output, each as the package's
// user would hand it over, and what this machine's own build makes of it. After twelve
// little-endian words (width, height, channels, kind, area x, y, width and height, kind of the
// relief plane or -1, length of the style, 0, 0) come style, pixels, relief plane and lit pixels.
#include "LM_style_codec.h"
#include "LM_style_lighting.h"
#include "SceneGenerator.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

LM_vectori2 VectorOf(ReferencePoint point) {
  return {point.h, point.v};
}

LM_style StyleOf(const Scene& scene, int reliefChannel) {
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
    out.center = VectorOf(light.center);
    out.handle1 = VectorOf(light.handle1), out.handle2 = VectorOf(light.handle2);
    out.radius = light.radius;
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
// channel.
void WriteScene(uint64_t number) {
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
  const LM_style style = StyleOf(scene, ownRelief ? 4 : 0);
  if (style.lightsRead == 0)
    return;

  const LM_rect area = {scene.area.top, scene.area.left, scene.area.bottom, scene.area.right};
  const LM_rect all = {0, 0, scene.height, scene.width};
  std::vector<uint8_t> lit = pixels;
  LM_render_job job;
  const LM_render_scratch_pointer scratch = LM_NewRenderScratch();
  const ptrdiff_t component = LM_ComponentBytes(kind);
  const ptrdiff_t step = component * channels;
  LM_render_views views = {};
  views.kind = kind;
  views.source = {pixels.data(), step * scene.width, step, all};
  views.output = {lit.data(), step * scene.width, step, all};
  if (ownRelief) {
    views.reliefKind = kind;
    views.relief = {pixels.data() + 3 * component, step * scene.width, step, all};
  } else if (hasRelief) {
    const ptrdiff_t heightStep = LM_ComponentBytes(reliefKind);
    views.reliefKind = reliefKind;
    views.relief = {relief.data(), heightStep * scene.width, heightStep, all};
  }
  if (LM_PrepareStyle(style, area, scene.width, scene.height, channels, job) !=
          LM_render_result::Done ||
      LM_RenderRect(job, views, area, *scratch) != LM_render_result::Done) {
    std::fprintf(stderr, "%s cannot be lit\n", scene.name.c_str());
    std::exit(1);
  }
  uint8_t file[LM_STYLE_MAX_BYTES];
  const size_t length = LM_EncodeStyle(style, file);
  const int32_t words[10] = {scene.width,
                             scene.height,
                             channels,
                             static_cast<int32_t>(kind),
                             area.left,
                             area.top,
                             area.right - area.left,
                             area.bottom - area.top,
                             relief.empty() ? -1 : static_cast<int32_t>(reliefKind),
                             static_cast<int32_t>(length)};
  Write(words, sizeof words);
  Write(file, length);
  Write(pixels.data(), pixels.size());
  Write(relief.data(), relief.size());
  Write(lit.data(), lit.size());
}

} // namespace

int main(int argumentCount, char** arguments) {
  const uint64_t count = argumentCount == 2 ? std::strtoull(arguments[1], nullptr, 10) : 0;
  for (uint64_t number = 0; number < count; ++number)
    WriteScene(number);
  return std::fflush(stdout) == 0 ? 0 : 1;
}
