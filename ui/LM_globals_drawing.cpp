// All lights on the preview.
#include <algorithm>

#include "LM_globals.h"

void LM_globals::DrawLights() {
  if (curLight >= LM_MAX_LIGHTS)
    return;
  DrawInactiveLights();
  lights[curLight].DrawActive(this, 1);
}

void LM_globals::DrawInactiveLights() {
  const int count = std::min<int>(numLights, LM_MAX_LIGHTS);
  for (int i = 0; i < count; ++i) {
    if (i != curLight)
      lights[i].DrawInactive();
  }
}
