#include "LM_item_drawing.h"

#include "LM_arithmetic.h"
#include "LM_drawing_scopes.h"
#include "LM_host_services.h"
#include "LM_mac_UI.h"
#include "MacResources.h"

namespace {

constexpr RGBColor DISABLED_FRAME = {0x7FFF, 0x7FFF, 0x7FFF};
constexpr RGBColor DISABLED_BUTTON = {0x8000, 0x8000, 0x8000};
constexpr short INTERFACE_FRAME = 1; // the number of the frames' colour

// A dialog's port with a normal pen, for the length of one procedure.
struct ItemScope {
  explicit ItemScope(DialogPtr dialog) : port(dialog) {}
  LM_port_scope port;
  LM_pen_scope pen;
};

int16_t Middle(int16_t a, int16_t b) {
  return static_cast<int16_t>((a + b) / 2);
}

void PlotIcon(const Rect& box, int16_t iconID) {
  CIconHandle icon = GetCIcon(iconID);
  if (icon == nullptr)
    return;
  PlotCIcon(&box, icon);
  DisposeCIcon(icon);
}

void DrawButtonAndLabel(DialogPtr dialog, int16_t item, short color) {
  const ItemScope scope(dialog);
  const Rect box = LM_ItemGetBox(dialog, item);
  const bool disabled = LM_ItemIsDisabled(dialog, item);
  Str255 label;
  GetIndString(label, LM_SMALL_BUTTON_LABELS, item == LM_DELETE_STYLE_ITEM ? 2 : 1);
  EraseRect(&box); // it may be there pressed
  if (disabled)
    RGBForeColor(&DISABLED_BUTTON);
  {
    const LM_small_text_scope text;
    MoveTo(Middle(box.left, LM_Saturate16(box.right - StringWidth(label))),
           LM_Saturate16(Middle(box.top, box.bottom) + 3));
    DrawString(label);
  }
  DrawButton(box, color, 1);
  if (disabled)
    RGBForeColor(&LM_BLACK);
}

struct Gap {
  int16_t start, end;
};

Gap GapOver(const Rect& box, int distance) {
  return {box.left, LM_Saturate16(box.right + distance)};
}

Gap GapOverTitle(DialogPtr dialog) {
  const LM_small_text_scope text(bold);
  Str255 title;
  GetIndString(title, LM_PROPERTIES_TITLE, 1);
  const int16_t start = LM_ItemGetBox(dialog, LM_PROPERTIES_TITLE_ITEM).left;
  return {start, LM_Saturate16(start + StringWidth(title) + 8)};
}

Gap GroupGap(DialogPtr dialog, int16_t item) {
  switch (item) {
  case LM_LIGHT_GROUP_ITEM:
    return GapOver(LM_ItemGetBox(dialog, LM_LIGHT_TYPE_ITEM), 4);
  case LM_PROPERTIES_GROUP_ITEM:
    return GapOverTitle(dialog);
  case LM_BUMP_GROUP_ITEM: {
    ControlHandle popup = LM_ItemControl(dialog, LM_BUMP_CHANNEL_ITEM);
    return popup != nullptr ? GapOver((**popup).contrlRect, 4) : Gap{0, 0};
  }
  case LM_STYLE_GROUP_ITEM:
    return GapOver(LM_ItemGetBox(dialog, LM_STYLE_ITEM), 4);
  default:
    return {0, 0};
  }
}

} // namespace

void LM_DrawWorkArea(DialogPtr dialog, int16_t item) {
  LM_globals* globals = LM_GlobalsOfDialog(dialog);
  if (globals == nullptr)
    return;
  const ItemScope scope(dialog);
  Rect box = LM_ItemGetBox(dialog, item);
  const CVPixelMap& map = globals->previewMaps[LM_FRAME_MAP];
  if (globals->record != nullptr)
    LM_DisplayPixels(globals->record, &map, map.bounds, box.top, box.left);
  InsetRect(&box, 1, 1);
  const LM_clip_scope clip(box);
  globals->DrawLights();
}

void LM_DrawPreview(DialogPtr, int16_t) {}

void LM_DrawColorBox(DialogPtr dialog, int16_t item, const LM_color48& color) {
  const ItemScope scope(dialog);
  const Rect box = LM_ItemGetBox(dialog, item);
  {
    const LM_color_pattern pattern(LM_RGBOf(color));
    PenPixPat(pattern.handle);
    FillCRect(&box, pattern.handle);
  }
  PenNormal();
  if (LM_ItemIsDisabled(dialog, item))
    RGBForeColor(&DISABLED_FRAME);
  else
    FrameColor(INTERFACE_FRAME);
  FrameRect(&box);
  RGBForeColor(&LM_BLACK);
}

void LM_DrawAmbientColorBox(DialogPtr dialog, int16_t item) {
  if (const LM_globals* globals = LM_GlobalsOfDialog(dialog))
    LM_DrawColorBox(dialog, item, globals->ambientColor);
}

void LM_DrawLightColorBox(DialogPtr dialog, int16_t item) {
  if (const LM_globals* globals = LM_GlobalsOfDialog(dialog))
    LM_DrawColorBox(dialog, item, globals->CurrentLight().color);
}

void LM_PlotItemIcon(DialogPtr dialog, int16_t item, int16_t iconID) {
  const ItemScope scope(dialog);
  PlotIcon(LM_ItemGetBox(dialog, item), iconID);
}

void LM_DrawLightWell(DialogPtr dialog, int16_t item) {
  const LM_globals* globals = LM_GlobalsOfDialog(dialog);
  if (globals == nullptr)
    return;
  const bool room = globals->numLights < LM_MAX_LIGHTS;
  LM_PlotItemIcon(dialog, item, room ? LM_FULL_WELL_ICON : LM_EMPTY_WELL_ICON);
}

void LM_DrawTrash(DialogPtr dialog, int16_t item) {
  LM_PlotItemIcon(dialog, item, LM_TRASH_ICON);
}

void LM_DrawInverseTrash(DialogPtr dialog, int16_t item) {
  const ItemScope scope(dialog);
  const Rect box = LM_ItemGetBox(dialog, item);
  PlotIcon(box, LM_TRASH_ICON);
  PlotIcon(box, LM_TRASH_HIGHLIGHT_ICON);
  const BitMap* pixels = GetPortBitMapForCopyBits(dialog);
  CopyBits(pixels, pixels, &box, &box, hilite, nullptr);
}

void LM_DrawOKOutline(DialogPtr dialog, int16_t) {
  const ItemScope scope(dialog);
  Rect box = LM_ItemGetBox(dialog, LM_OK_ITEM);
  if (EmptyRect(&box))
    return;
  InsetRect(&box, -4, -4);
  PenSize(3, 3);
  FrameRoundRect(&box, 16, 16);
}

void LM_DrawSmallButton(DialogPtr dialog, int16_t item) {
  DrawButtonAndLabel(dialog, item, 0);
}

void LM_DrawPressedSmallButton(DialogPtr dialog, int16_t item) {
  DrawButtonAndLabel(dialog, item, 1);
}

void DrawButton(const Rect& rect, short color, LM_bool framed) {
  Rect frame = rect;
  InsetRect(&frame, 2, 2);
  if (EmptyRect(&frame))
    return;
  if (color != 0)
    InvertRect(&frame);
  for (int ring = 0; framed == 1 && ring < 3; ++ring) {
    FrameRect(&frame);
    InsetRect(&frame, -1, -1);
  }
}

void LM_DrawPropertiesTitle(DialogPtr dialog, int16_t item) {
  const ItemScope scope(dialog);
  const LM_small_text_scope text(bold);
  const Rect box = LM_ItemGetBox(dialog, item);
  Str255 title;
  GetIndString(title, LM_PROPERTIES_TITLE, 1);
  MoveTo(LM_Saturate16(box.left + 4), LM_Saturate16(Middle(box.top, box.bottom) + 3));
  DrawString(title);
}

void LM_DrawGroupBox(DialogPtr dialog, int16_t item) {
  const ItemScope scope(dialog);
  const Rect box = LM_ItemGetBox(dialog, item);
  if (EmptyRect(&box))
    return;
  const Gap gap = GroupGap(dialog, item);
  const auto right = static_cast<int16_t>(box.right - 1);
  const auto bottom = static_cast<int16_t>(box.bottom - 1);
  FrameColor(INTERFACE_FRAME);
  MoveTo(gap.start, box.top);
  LineTo(box.left, box.top);
  LineTo(box.left, bottom);
  LineTo(right, bottom);
  LineTo(right, box.top);
  LineTo(gap.end, box.top);
  RGBForeColor(&LM_BLACK);
}
