// The figures of lights on the dialog's preview, for drawing and for hit testing.
//
// All places are in the dialog's coordinates. A light's centre is drawn at center + anchor; what
// would lie beyond 16 bits lies at their end.
#pragma once

#include "LM_drawing_scopes.h"
#include "LM_handles.h"
#include "LM_light_UI.h"
#include "QuickDraw.h"

// The light's figure in the dialog's coordinates.
LM_light_figure LM_ScreenFigure(const LM_light_UI& light);
// Whole places as pixels, and back.
Point LM_PointOf(LM_vector2f place);
LM_vector2f LM_FloatsOf(Point point);
LM_vectori2 LM_WholeVector(LM_vector2f vector);

Point LM_ScreenCenter(const LM_light_UI& light);
// A place moved by (dh, dv).
Point LM_PlaceAt(Point from, int dh, int dv);
Rect LM_CenterHandleBox(Point center);
Rect LM_GrabHandleBox(Point place);
// The circle of an omni light.
Rect LM_OmniBox(const LM_light_UI& light);

// The pen mode of grey outlines: added to the picture, or exclusive-or on a port of 8 bits or less.
void LM_SetAddOverMode();
