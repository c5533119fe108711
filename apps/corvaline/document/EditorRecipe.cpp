#include "EditorRecipe.h"

#include "LM_style_lengths.h"

#include <algorithm>

namespace editor {

LM_style InWorldUnit(LM_style style) {
  style.lightsRead = std::min<uint16_t>(style.lightsRead, LM_MAX_LIGHTS);
  for (int i = 0; i < style.lightsRead && style.worldUnit != WORLD_UNIT; ++i)
    style.lights[i] = LM_TranslateLight(style.lights[i], style.worldUnit, WORLD_UNIT);
  style.worldUnit = WORLD_UNIT;
  style.numLights = style.lightsRead;
  return style;
}

} // namespace editor
