// The parameter dialog's event filter: what the Dialog Manager does not do by itself.
#include "Cursors.h"
#include "LM_alerts.h"
#include "LM_drawing_scopes.h"
#include "LM_item_drawing.h"
#include "LM_keyboard.h"
#include "LM_light_UI_mac.h"
#include "LM_mac_UI.h"
#include "LM_preview.h"
#include "QuickDraw.h"

namespace {

// Renders after a change that the filter made; a failure is left for the dialog's loop to find.
void Render(DialogPtr dialog, LM_globals* globals) {
  const int16_t result = LM_GeneratePreview(dialog, globals);
  if (result != CV_RESULT_OK)
    SetWRefCon(dialog, result);
}

struct LightHit {
  int light;
  short part; // handle code
};

// The selected light counts with its handles, and before the others.
LightHit HitTestLights(LM_globals* globals, Point point) {
  const short part = globals->CurrentLight().HitTest(point, 1);
  if (part != LM_HANDLE_NONE)
    return {globals->curLight, part};
  for (int i = 0; i < globals->numLights; ++i) {
    const short body = globals->lights[i].HitTest(point, 0);
    if (body != LM_HANDLE_NONE)
      return {i, body};
  }
  return {globals->curLight, LM_HANDLE_NONE};
}

void SelectLight(DialogPtr dialog, LM_globals* globals, int light) {
  globals->curLight = static_cast<uint16_t>(light);
  LM_SetCurLightToDialog(dialog, globals);
  LM_ItemForceDraw(dialog, LM_WORK_AREA_ITEM);
}

LM_bool PressWorkArea(DialogPtr dialog, LM_globals* globals, Point point) {
  const LightHit hit = HitTestLights(globals, point);
  if (hit.part == LM_HANDLE_NONE)
    return 0;
  if (hit.light != globals->curLight) {
    SelectLight(dialog, globals, hit.light);
    if (StillDown() == 0)
      return 1;
  }
  LM_light_UI& light = globals->lights[hit.light];
  if (hit.part == LM_HANDLE_CENTER) {
    KeyMap keys;
    GetKeys(keys);
    if (KeyIsDown(keys, kOptionKeyCode))
      LM_AddNewLight(dialog, globals, 1);
    else
      light.MoveUI(dialog, globals);
  } else {
    light.DragGrabHandle(dialog, globals, hit.part);
  }
  Render(dialog, globals);
  return 1;
}

// True when the slider's value changed.
LM_bool TrackSlider(ControlHandle slider, Point point) {
  const int16_t before = GetControlValue(slider);
  // NOLINTNEXTLINE(performance-no-int-to-ptr): -1 stands for the control's own action
  const auto action = reinterpret_cast<ControlActionProcPtr>(intptr_t{-1});
  TrackControl(slider, point, action);
  return GetControlValue(slider) != before ? 1 : 0;
}

LM_bool MouseDown(DialogPtr dialog, LM_globals* globals, const EventRecord& event, int16_t* item) {
  const LM_port_scope port(dialog);
  Point point = event.where;
  GlobalToLocal(&point);
  if (PtInRect(point, &dialog->portRect) == 0)
    return 0;
  const int16_t pressed = static_cast<int16_t>(FindDialogItem(dialog, point) + 1);
  ControlHandle slider = nullptr;
  if (LM_IsSlider(pressed) && FindControl(point, dialog, &slider) != 0 && slider != nullptr) {
    *item = pressed;
    return TrackSlider(slider, point);
  }
  switch (pressed) {
  case LM_LIGHT_WELL_ITEM:
    LM_AddNewLight(dialog, globals, 0);
    return 1;
  case LM_SAVE_STYLE_ITEM:
  case LM_DELETE_STYLE_ITEM:
    return LM_ItemIsDisabled(dialog, pressed) ? 0 : LM_TrackSmallButton(dialog, pressed);
  default:
    break;
  }
  const Rect workArea = LM_ItemGetBox(dialog, LM_WORK_AREA_ITEM);
  return PtInRect(point, &workArea) != 0 ? PressWorkArea(dialog, globals, point) : 0;
}

void DeleteLight(DialogPtr dialog, LM_globals* globals) {
  if (globals->numLights < 2) {
    LM_ShowTooFewLightsError();
    return;
  }
  globals->DeleteCurrentLight();
  LM_SetCurLightToDialog(dialog, globals);
  LM_ItemForceDraw(dialog, LM_LIGHT_WELL_ITEM);
  Render(dialog, globals);
}

// Selects the light before or after the current one, round the ends.
void StepLight(DialogPtr dialog, LM_globals* globals, bool backwards) {
  const int count = globals->numLights;
  if (count >= 2)
    SelectLight(dialog, globals, (globals->curLight + (backwards ? count - 1 : 1)) % count);
}

LM_bool KeyDown(DialogPtr dialog, LM_globals* globals, const EventRecord& event) {
  switch ((event.message & keyCodeMask) >> 8) {
  case kDeleteKeyCode:
  case kForwardDeleteKeyCode:
    DeleteLight(dialog, globals);
    return 1;
  case kTabKeyCode:
    StepLight(dialog, globals, (event.modifiers & shiftKey) != 0);
    return 1;
  default:
    return 0;
  }
}

} // namespace

LM_bool LM_DialogFilter(DialogPtr dialog, EventRecord* event, int16_t* item) {
  LM_globals* globals = LM_GlobalsOfDialog(dialog);
  if (globals == nullptr)
    return 0;
  switch (event->what) {
  case mouseDown:
    return MouseDown(dialog, globals, *event, item);
  case keyDown:
    return KeyDown(dialog, globals, *event);
  default:
    return 0;
  }
}

Boolean LM_DialogFilterProc(DialogPtr dialog, EventRecord* event, int16_t* item) {
  if (LM_DialogFilter(dialog, event, item) != 0)
    return 1;
  if (LM_globals* globals = LM_GlobalsOfDialog(dialog))
    LM_DragByKey(dialog, globals, *event);
  return 0;
}

void LM_AddNewLight(DialogPtr dialog, LM_globals* globals, LM_bool copy) {
  if (globals->numLights >= LM_MAX_LIGHTS)
    return;
  const LM_port_scope port(dialog);
  LM_PlotItemIcon(dialog, LM_LIGHT_WELL_ITEM, LM_OPEN_WELL_ICON);
  const CursHandle cursor = GetCursor(LM_NEW_LIGHT_CURSOR);
  if (cursor != nullptr)
    SetCursor(*cursor);
  while (StillDown() != 0) {
  }
  InitCursor();
  Point mouse = {0, 0};
  GetMouse(&mouse);
  const Rect workArea = LM_ItemGetBox(dialog, LM_WORK_AREA_ITEM);
  const bool dropped = PtInRect(mouse, &workArea) != 0;
  if (dropped) {
    if (copy == 1)
      globals->CopyNewLight(mouse.h, mouse.v);
    else
      globals->CreateNewLight(mouse.h, mouse.v);
    LM_SetCurLightToDialog(dialog, globals);
  }
  LM_ItemForceDraw(dialog, LM_LIGHT_WELL_ITEM);
  if (dropped)
    Render(dialog, globals);
}

LM_bool LM_TrackSmallButton(DialogPtr dialog, int16_t item) {
  const LM_port_scope port(dialog);
  const Rect box = LM_ItemGetBox(dialog, item);
  Point mouse = {0, 0};
  bool inside = true;
  LM_DrawPressedSmallButton(dialog, item);
  while (StillDown() != 0) {
    GetMouse(&mouse);
    const bool nowInside = PtInRect(mouse, &box) != 0;
    if (nowInside != inside)
      (nowInside ? LM_DrawPressedSmallButton : LM_DrawSmallButton)(dialog, item);
    inside = nowInside;
  }
  GetMouse(&mouse);
  LM_DrawSmallButton(dialog, item);
  return PtInRect(mouse, &box) == 0 ? 1 : 0;
}
