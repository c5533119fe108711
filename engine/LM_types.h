// The small types that every part of the engine shares: light's own, the host's and the Toolbox's.
#pragma once

#include "CVFilterRecord.h"
#include "LM_image.h"
#include "LM_vectors.h"
#include "MacTypes.h"

// The host's rectangle as light's.
inline LM_rect LM_RectOf(const CVRect& r) {
  return {r.top, r.left, r.bottom, r.right};
}
