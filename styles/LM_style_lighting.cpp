#include "LM_style_lighting.h"

#include <algorithm>

#include "LM_style_layout.h"

namespace {

// Pressing OK takes the surface settings from the sliders, which show no value beyond their ends.
LM_style LimitedToSliders(LM_style style) {
  LM_VisitStyleHeader(style, [](const char*, auto& value, LM_field kind) {
    value = static_cast<std::decay_t<decltype(value)>>(LM_LitAs(kind, value));
    return true;
  });
  return style;
}

LM_surface_figure SurfaceOf(const LM_style& style, const LM_preview_geometry& geometry,
                            int numChannels) {
  return {style.ambientColor,  style.ambientBrightness,
          style.gloss,         style.material,
          style.exposure,      LM_ChannelOrNone(style.bumpChannel, numChannels),
          style.bumpAmplitude, style.whiteIsHigh != 0,
          geometry.width,      static_cast<uint16_t>(geometry.WorldUnit())};
}

bool FillParameters(const LM_style& style, const LM_surface_figure& surface, LM_bool forPreview,
                    foo* params) {
  const int count = std::min<int>(style.lightsRead, LM_MAX_LIGHTS);
  if (count == 0)
    return false;
  LM_InitParameters(params);
  LM_ConvertSurface(surface, params);
  const auto unit = static_cast<int16_t>(surface.pixelsPerUnit);
  for (int i = 0; i < count; ++i) {
    if (style.lights[i].on == 1)
      LM_ConvertLight(LM_FigureOf(LM_TranslateLight(style.lights[i], style.worldUnit, unit)),
                      static_cast<float>(surface.pixelsPerUnit), forPreview,
                      &params->lights[params->numLights++]);
  }
  return true;
}

} // namespace

LM_light_figure LM_FigureOf(const LM_style_light& light) {
  return {LM_LightKindOfCode(light.type).type,
          light.center,
          light.handle1,
          light.handle2,
          light.radius,
          light.color,
          light.intensity,
          light.spread};
}

int16_t LM_ChannelOrNone(int16_t channel, int numChannels) {
  return channel < 0 || channel > numChannels ? int16_t{0} : channel;
}

bool LM_ParametersFromStyle(const LM_style& style, int areaWidth, int areaHeight, int numChannels,
                            foo* params) {
  const LM_preview_geometry geometry = LM_FitPreviewInFrame(areaWidth, areaHeight);
  return FillParameters(style, SurfaceOf(LimitedToSliders(style), geometry, numChannels), 0,
                        params);
}

bool LM_PreviewParametersFromStyle(const LM_style& style, const LM_preview_geometry& geometry,
                                   int numChannels, foo* params) {
  if (!FillParameters(style, SurfaceOf(style, geometry, numChannels), 1, params))
    return false;
  params->bumpHeight = LM_PreviewHeight(params->bumpHeight, geometry.scale);
  return true;
}

LM_render_result LM_PrepareStyle(const LM_style& style, const LM_rect& area, int32_t imageWidth,
                                 int32_t imageHeight, int numChannels, LM_render_job& job) {
  if (!LM_ParametersFromStyle(style, area.right - area.left, area.bottom - area.top, numChannels,
                              &job.params))
    return LM_render_result::NoLight;
  return LM_PrepareRender(job.params, area, imageWidth, imageHeight, LM_BestKernels(), job);
}
