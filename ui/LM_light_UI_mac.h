// The figures of lights on the dialog's preview: their handles, for drawing and for hit testing.
//
// All places are in the dialog's coordinates. A light's centre is drawn at center + anchor; what
// would lie beyond 16 bits lies at their end.
#pragma once

#include "LM_drawing_scopes.h"
#include "LM_light_UI.h"
#include "QuickDraw.h"

// What LM_light_UI::HitTest answers. An omni's first axis is horizontal; a directional light has
// one grab handle, the first.
enum LM_handle_code : short {
  LM_HANDLE_NONE = 0,
  LM_HANDLE_CENTER = 1,
  LM_HANDLE_FIRST_BACK = 2,  // spot: center - handle1; omni: left; directional: handle1's end
  LM_HANDLE_SECOND_BACK = 3, // spot: center - handle2; omni: top
  LM_HANDLE_FIRST_END = 4,   // spot: center + handle1; omni: right
  LM_HANDLE_SECOND_END = 5   // spot: center + handle2; omni: bottom
};

struct LM_grab_handle {
  short code; // LM_handle_code
  Point place;
};

// In the order in which they are drawn and tested.
struct LM_grab_handles {
  int count = 0;
  LM_grab_handle handles[4];
};

// endInset: by how much an omni's right and bottom handles are drawn inside its circle.
LM_grab_handles LM_GrabHandlesOf(const LM_light_UI& light, int endInset);

Point LM_ScreenCenter(const LM_light_UI& light);
// A place moved by (dh, dv).
Point LM_PlaceAt(Point from, int dh, int dv);
Rect LM_CenterHandleBox(Point center);
Rect LM_GrabHandleBox(Point place);
// The circle of an omni light.
Rect LM_OmniBox(const LM_light_UI& light);

// The pen mode of grey outlines: added to the picture, or exclusive-or on a port of 8 bits or less.
void LM_SetAddOverMode();
