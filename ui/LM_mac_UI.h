// The parameter dialog: its items, and what its parts share.
//
// The dialog reaches the settings object through its auxiliary window record, so that filters and
// drawing procedures need nothing but the dialog. All calls come on the host's thread.
#pragma once

#include "Controls.h"
#include "Dialogs.h"
#include "LM_export.h"
#include "LM_globals.h"
#include "LM_sliders.h"
#include "MacTypes.h"

// Dialogs, by resource number.
constexpr int16_t LM_PARAMETER_DIALOG = 16000;
constexpr int16_t LM_SAVE_AS_DIALOG = 16002;
constexpr int16_t LM_OVERWRITE_DIALOG = 16004;
constexpr int16_t LM_DELETE_DIALOG = 16005;

// What a dialog that cannot be shown any more answers instead of an item.
constexpr int16_t LM_NO_DIALOG = -1;

// String lists. Each has what is named here as item 1.
constexpr int16_t LM_PERCENT_LABELS = 134; // labels of a slider that counts from 0 to 100
constexpr int16_t LM_AMBIENT_COLOR_PROMPT = 135;
constexpr int16_t LM_LIGHT_COLOR_PROMPT = 136;
constexpr int16_t LM_NO_CHANNEL_NAME = 137;
constexpr int16_t LM_SMALL_BUTTON_LABELS = 139; // 1 Save, 2 Delete
constexpr int16_t LM_PROPERTIES_TITLE = 140;
constexpr int16_t LM_DEFAULT_STYLE_NAME = 141;

// Colour icons and cursors.
constexpr int16_t LM_FULL_WELL_ICON = 128;
constexpr int16_t LM_OPEN_WELL_ICON = 129; // while a light is dragged out of it
constexpr int16_t LM_EMPTY_WELL_ICON = 130;
constexpr int16_t LM_TRASH_ICON = 131;
constexpr int16_t LM_TRASH_HIGHLIGHT_ICON = 133; // drawn over the trash
constexpr int16_t LM_NEW_LIGHT_CURSOR = 128;

// The slider's control definition.
constexpr int16_t LM_SLIDER_DEFINITION = 129;

// Items of the parameter dialog.
enum LM_dialog_item : int16_t {
  LM_OK_ITEM = 1,
  LM_CANCEL_ITEM = 2,
  LM_OK_OUTLINE_ITEM = 3,
  LM_SAVE_STYLE_ITEM = 4,
  LM_AMBIENT_COLOR_ITEM = 5,
  LM_WORK_AREA_ITEM = 6, // the frame, with the preview and the lights in it
  LM_LIGHT_COLOR_ITEM = 7,
  LM_PREVIEW_ITEM = 8,
  LM_LIGHT_ON_ITEM = 9,
  LM_WHITE_IS_HIGH_ITEM = 10,
  LM_LIGHT_TYPE_ITEM = 11,
  LM_BUMP_CHANNEL_ITEM = 12,
  LM_GLOSS_ITEM = 13,
  LM_MATERIAL_ITEM = 14,
  LM_EXPOSURE_ITEM = 15,
  LM_AMBIENCE_ITEM = 16,
  LM_INTENSITY_ITEM = 17,
  LM_SPREAD_ITEM = 18,
  LM_BUMP_AMPLITUDE_ITEM = 19,
  LM_STYLE_ITEM = 20,
  LM_LIGHT_WELL_ITEM = 21,
  LM_TRASH_ITEM = 22,
  LM_DELETE_STYLE_ITEM = 23,
  LM_LIGHT_GROUP_ITEM = 24,
  LM_PROPERTIES_GROUP_ITEM = 25,
  LM_BUMP_GROUP_ITEM = 26,
  LM_STYLE_GROUP_ITEM = 27,
  LM_PROPERTIES_TITLE_ITEM = 28,
  LM_PREVIEW_ON_ITEM = 29 // static texts follow
};

constexpr bool LM_IsSlider(int16_t item) {
  return item >= LM_GLOSS_ITEM && item <= LM_BUMP_AMPLITUDE_ITEM;
}

// --- The dialog as a whole (LM_parameter_dialog*.cpp) ---

// Makes this dialog the session's. Building it then also sets up the user's style library. The
// dialog's module shows this name, for the plug-in to call.
extern "C" LM_EXPORT void LM_UseDesktopDialog();

// Builds the dialog and stores it and its resource in the settings; it is drawn but not shown.
// CV_RESULT_NO_MEMORY when it cannot be had, and nothing is stored then.
int16_t LM_ConstructParameterDialog(FilterRecord* record, LM_globals* globals);

// Runs the dialog and releases it, and the shading caches. 0 after OK, CV_RESULT_STOPPED after
// Cancel, else the code of the step that failed. Settings keep what was changed, whatever the
// result.
int16_t LM_DoParameterDialog(FilterRecord* record, LM_globals* globals);

// Releases a dialog that the settings hold; nothing when there is none.
void LM_DisposeParameterDialog(LM_globals* globals);

// Chooses the preview's scale and its place, where item 8 is moved, and sets its pixel maps up.
// Once the dialog has been built. CV_RESULT_NO_MEMORY leaves no buffer behind.
int16_t LM_CalculatePreviewScaling(FilterRecord* record, LM_globals* globals);

// Renders the preview, lit or not as the settings say, under a watch cursor, and redraws item 6.
int16_t LM_GeneratePreview(GrafPort* port, LM_globals* globals);

// Gives the user items their drawing procedures.
void LM_InitDialogUserItems(DialogPtr dialog);

// The settings that the dialog works on, or null.
LM_globals* LM_GlobalsOfDialog(DialogPtr dialog);
void LM_SetGlobalsOfDialog(DialogPtr dialog, LM_globals* globals);

// The event filter: drags of lights, of the well and of sliders, small buttons, delete and tab.
LM_bool LM_DialogFilter(DialogPtr dialog, EventRecord* event, int16_t* item);
// The same as the modal loop wants it.
Boolean LM_DialogFilterProc(DialogPtr dialog, EventRecord* event, int16_t* item);

// Pulls a light from the well, or from another light when copy is 1, and drops it where the mouse
// is released, if that is in the work area. Nothing with sixteen lights.
void LM_AddNewLight(DialogPtr dialog, LM_globals* globals, LM_bool copy);

// Follows a press on a small button; true when the mouse was released outside it.
LM_bool LM_TrackSmallButton(DialogPtr dialog, int16_t item);

// --- Between controls and settings (LM_fetch.cpp) ---

void LM_SetGlobalsToDialog(DialogPtr dialog, LM_globals* globals);
// Fetches material, gloss, exposure, ambience, bump amplitude and white is high.
void LM_GetGlobalsFromDialog(DialogPtr dialog, LM_globals* globals);
// Shows the current light in the controls of the light group.
void LM_SetCurLightToDialog(DialogPtr dialog, LM_globals* globals);

// Each takes its control's value into the settings.
void LM_FetchLightType(DialogPtr dialog, LM_globals* globals);
void LM_FetchGloss(DialogPtr dialog, LM_globals* globals);
void LM_FetchMaterial(DialogPtr dialog, LM_globals* globals);
void LM_FetchExposure(DialogPtr dialog, LM_globals* globals);
void LM_FetchAmbientBrightness(DialogPtr dialog, LM_globals* globals);
void LM_FetchBumpAmplitude(DialogPtr dialog, LM_globals* globals);
void LM_FetchWhiteIsHigh(DialogPtr dialog, LM_globals* globals);
void LM_FetchCurrentLightIntensity(DialogPtr dialog, LM_globals* globals);
void LM_FetchCurrentLightSpread(DialogPtr dialog, LM_globals* globals);
// Collects the preview's relief of a newly chosen channel; the host's code when that fails.
int16_t LM_FetchBumpMap(DialogPtr dialog, LM_globals* globals);

// Collects the preview's relief of the settings' channel, if there is one, and puts the arrow back.
int16_t LM_CollectRelief(LM_globals* globals);

// Check boxes: each toggles its item and its setting.
void LM_DoLightCheckBox(DialogPtr dialog, int16_t item, LM_globals* globals);
void LM_DoBumpCheckBox(DialogPtr dialog, int16_t item, LM_globals* globals);
void LM_DoPreviewCheckBox(DialogPtr dialog, int16_t item, LM_globals* globals);

// Colour boxes: each asks for a colour and keeps the one chosen.
void LM_PickAmbientColor(DialogPtr dialog, int16_t item, LM_globals* globals);
void LM_PickLightColor(DialogPtr dialog, int16_t item, LM_globals* globals);

// Fills a popup with "None" and the document's channels. The last error of the host, or 0.
int16_t LM_RebuildBumpMapPopup(DialogPtr dialog, int16_t item, FilterRecord* record);

// Asks for a colour through the host, or through the Toolbox where the host has no picker. True and
// *outColor when one was chosen. globals->record is the host's.
LM_bool CVGetColor(Point where, ConstStr255Param prompt, const LM_color48& inColor,
                   LM_color48& outColor, LM_globals* globals);

// --- Items (LM_dialog_items.cpp). An item that is not there is ignored, and answers 0. ---

Handle LM_ItemHandle(DialogPtr dialog, int16_t item);
ControlHandle LM_ItemControl(DialogPtr dialog, int16_t item);
int16_t LM_ControlValue(DialogPtr dialog, int16_t item);
void LM_SetControlValue(DialogPtr dialog, int16_t item, int16_t value);
// Controls: drawn grey and dead while disabled.
void LM_EnableControl(DialogPtr dialog, int16_t item);
void LM_DisableControl(DialogPtr dialog, int16_t item);
// User items: the disable bit of their type; they draw themselves grey and report no clicks.
void LM_EnableItem(DialogPtr dialog, int16_t item);
void LM_DisableItem(DialogPtr dialog, int16_t item);
bool LM_ItemIsDisabled(DialogPtr dialog, int16_t item);
// The item's rectangle, in the dialog's coordinates.
Rect LM_ItemGetBox(DialogPtr dialog, int16_t item);
// Moves the item without redrawing anything.
void LM_ItemSetBox(DialogPtr dialog, int16_t item, const Rect& box);
// Redraws exactly the item's rectangle.
void LM_ItemForceDraw(DialogPtr dialog, int16_t item);
void LM_UserItemSetDrawProc(DialogPtr dialog, int16_t item, UserItemUPP procedure);
// A popup's menu, or null.
MenuHandle LM_PopupMenu(DialogPtr dialog, int16_t item);
// The text of a popup's menu item, from 1; empty when there is none.
void LM_PopupGetItem(DialogPtr dialog, int16_t item, int16_t menuItem, Str255 text);
// Place of a name in a popup's menu, from 1, ignoring case and marks unless exactly is 1; 0 when it
// is not there.
int16_t LM_PopupItemIndex(DialogPtr dialog, int16_t item, ConstStr255Param name,
                          Boolean exactly = 0);
// Gives a popup the range of its menu: 1 to the number of items, or 0 to 0.
void LM_PopupUseMenuRange(DialogPtr dialog, int16_t item);
// Removes all items of a popup's menu.
void LM_PopupClear(DialogPtr dialog, int16_t item);
// Disposes of the menus of items 20, 11 and 12.
void LM_DisposePopupMenus(DialogPtr dialog);

// --- Small-font controls (LM_small_font_controls.cpp) ---

// Wraps the definitions of items 9, 10, 11, 12, 20 and 29, so that they draw in font 1 at size 9.
void LM_InitSmallFontControls(DialogPtr dialog);
// Puts the wrapped definitions back.
void LM_ResetSmallFontControls(DialogPtr dialog);

// --- The style menu and its dialogs (LM_style_menu.cpp, LM_style_dialogs.cpp) ---

// Lists the style folder in a popup, the default style first. True when there is a style.
LM_bool LM_RebuildStylePopup(DialogPtr dialog, int16_t item);
// Asks for a name, starting from `name`, which takes what was typed. True after OK.
LM_bool LM_AskSaveAsName(FilterRecord* record, StringPtr name);
// True only when the second button was clicked: every key declines.
LM_bool LM_ConfirmOverwrite(ConstStr255Param name);
LM_bool LM_ConfirmDelete(ConstStr255Param name);
LM_bool LM_ConfirmDialogFilter(DialogPtr dialog, EventRecord* event, int16_t* item);
