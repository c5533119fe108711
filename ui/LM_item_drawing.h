// How the parameter dialog draws its own items. Each procedure draws into the dialog's port
// whatever port is current, and leaves port, pen, clip and text as they were and the foreground
// black. They find the settings through the dialog (LM_GlobalsOfDialog); without settings, and
// where an item or a resource is missing, what depends on it is left out.
#pragma once

#include "Dialogs.h"
#include "LM_types.h"

// The frame map, and over it the figures of all lights.
void LM_DrawWorkArea(DialogPtr dialog, int16_t item);
// Nothing: the preview is part of the work area.
void LM_DrawPreview(DialogPtr dialog, int16_t item);

// A framed box of the colour, its frame grey while the item is disabled.
void LM_DrawColorBox(DialogPtr dialog, int16_t item, const LM_color48& color);
void LM_DrawAmbientColorBox(DialogPtr dialog, int16_t item);
void LM_DrawLightColorBox(DialogPtr dialog, int16_t item); // of the current light

// The well is empty once there are sixteen lights.
void LM_DrawLightWell(DialogPtr dialog, int16_t item);
void LM_DrawTrash(DialogPtr dialog, int16_t item);
// The trash with a light over it; LM_DrawTrash undoes it.
void LM_DrawInverseTrash(DialogPtr dialog, int16_t item);

// A colour icon in an item's rectangle.
void LM_PlotItemIcon(DialogPtr dialog, int16_t item, int16_t iconID);

// The ring around item 1, the default button.
void LM_DrawOKOutline(DialogPtr dialog, int16_t item);

// Save or Delete: frame and label, grey while the item is disabled.
void LM_DrawSmallButton(DialogPtr dialog, int16_t item);
// The same, inverted inside: how it looks while it is pressed.
void LM_DrawPressedSmallButton(DialogPtr dialog, int16_t item);
// In the current port: inverts the rectangle inset by 2 when color is not 0, then, when framed is
// 1, frames it three times, growing outwards, in the foreground colour.
void DrawButton(const Rect& rect, short color, LM_bool framed);

// The title of the light properties group.
void LM_DrawPropertiesTitle(DialogPtr dialog, int16_t item);
// A group's lines, with a gap in the top one for the popup or title that sits on it.
void LM_DrawGroupBox(DialogPtr dialog, int16_t item);
