#include "LM_style_menu.h"

#include <string>

#include "LM_alerts.h"
#include "LM_mac_stream.h"
#include "LM_style_library.h"
#include "MacResources.h"
#include "MacStrings.h"

namespace {

int16_t ChosenPlace(const LM_style_menu& menu) {
  return LM_ControlValue(menu.dialog, LM_STYLE_ITEM);
}

void GetChosenName(const LM_style_menu& menu, Str255 name) {
  LM_PopupGetItem(menu.dialog, LM_STYLE_ITEM, ChosenPlace(menu), name);
}

// Delete is for every style but the default one, which comes first.
void EnableDeleteForChoice(const LM_style_menu& menu) {
  Str255 name;
  GetChosenName(menu, name);
  const bool isDefault = ChosenPlace(menu) == 1 && EqualString(name, menu.defaultName, 0, 0) != 0;
  const bool deletable = name[0] != 0 && !isDefault;
  (deletable ? LM_EnableItem : LM_DisableItem)(menu.dialog, LM_DELETE_STYLE_ITEM);
  LM_ItemForceDraw(menu.dialog, LM_DELETE_STYLE_ITEM);
}

// Where exactly this name stands in the menu, or one that differs by case and marks; 0 for neither.
int16_t PlaceOfName(const LM_style_menu& menu, ConstStr255Param name) {
  const int16_t place = LM_PopupItemIndex(menu.dialog, LM_STYLE_ITEM, name, 1);
  return place > 0 ? place : LM_PopupItemIndex(menu.dialog, LM_STYLE_ITEM, name);
}

// Loads the style that the dialog opens with, or else the menu's first one, and answers its place
// in the menu; 0 when neither loads.
int16_t LoadOpeningStyle(LM_style_menu& menu) {
  Str255 name;
  LM_PStringCopy(name, menu.openingName);
  if (name[0] != 0 && LM_LoadStyle(name, menu.globals) != 0)
    return PlaceOfName(menu, name);
  LM_PopupGetItem(menu.dialog, LM_STYLE_ITEM, 1, name);
  return name[0] != 0 && LM_LoadStyle(name, menu.globals) != 0 ? int16_t{1} : int16_t{0};
}

void Choose(const LM_style_menu& menu, int16_t place) {
  if (place > 0)
    LM_SetControlValue(menu.dialog, LM_STYLE_ITEM, place);
}

// Asks until there is a name that may be written, or the user gives up. `name` becomes that of the
// style to be replaced, if there is one.
bool AskForName(const LM_style_menu& menu, StringPtr name) {
  Str255 typed;
  LM_PStringCopy(typed, name);
  while (LM_AskSaveAsName(menu.record, typed) != 0) {
    LM_PStringCopy(name, typed);
    if (LM_style_istream::Exists(name) == 0)
      return true;
    if (LM_ConfirmOverwrite(name) == 0)
      continue;
    if (LM_style_ostream::IsLocked(name) == 0)
      return true;
    LM_FileSaveLockedError(name);
  }
  return false;
}

// The settings are those of the style at this place of the menu.
void NoteLoaded(LM_style_menu& menu, int16_t place) {
  menu.loadedPlace = place;
  menu.globals->SetStyleIndex(place);
}

// Shows settings that have become others, and has them rendered.
LM_style_outcome ShowSettings(const LM_style_menu& menu) {
  const int16_t result = LM_CheckBumpChannel(menu.dialog, menu.globals);
  LM_SetGlobalsToDialog(menu.dialog, menu.globals);
  LM_SetCurLightToDialog(menu.dialog, menu.globals);
  LM_ItemForceDraw(menu.dialog, LM_LIGHT_WELL_ITEM);
  return {result, true};
}

} // namespace

LM_bool LM_RebuildStylePopup(DialogPtr dialog, int16_t item) {
  const MenuHandle menu = LM_PopupMenu(dialog, item);
  if (menu == nullptr)
    return 0;
  LM_PopupClear(dialog, item);
  Str255 first;
  GetIndString(first, LM_DEFAULT_STYLE_NAME, 1);
  LM_style_istream probe;
  if (probe.Open(first) != 0)
    AppendMenu(menu, first);
  probe.Close();
  // A second style whose name differs from the default one's by case and marks is the user's too.
  for (const std::string& name : LM_StyleNames()) {
    const TB_Str255 text = TB_PString(name);
    if (EqualString(text, first, 1, 1) == 0)
      AppendMenu(menu, text);
  }
  LM_PopupUseMenuRange(dialog, item);
  LM_ItemForceDraw(dialog, item);
  const bool any = CountMenuItems(menu) > 0;
  (any ? LM_EnableItem : LM_DisableItem)(dialog, LM_DELETE_STYLE_ITEM);
  LM_ItemForceDraw(dialog, LM_DELETE_STYLE_ITEM);
  return any ? 1 : 0;
}

LM_style_menu LM_UseStyleMenu(DialogPtr dialog, LM_globals* globals, FilterRecord* record) {
  LM_style_menu menu = {dialog, globals, record, {0}, {0}, 0};
  GetIndString(menu.defaultName, LM_DEFAULT_STYLE_NAME, 1);
  if (globals->UseCurrentSettings() == 0)
    LM_PopupGetItem(dialog, LM_STYLE_ITEM, 1, menu.openingName);
  return menu;
}

void LM_OpenStyleMenu(LM_style_menu& menu) {
  LM_RebuildStylePopup(menu.dialog, LM_STYLE_ITEM);
  if (menu.globals->UseCurrentSettings() == 0) {
    NoteLoaded(menu, LoadOpeningStyle(menu));
  } else {
    const MenuHandle styles = LM_PopupMenu(menu.dialog, LM_STYLE_ITEM);
    const int16_t kept = menu.globals->StyleIndex();
    if (styles == nullptr || kept < 0 || kept > CountMenuItems(styles))
      menu.globals->SetStyleIndex(0);
    // Another style may stand at the kept place by now, so that the first choice always loads.
    menu.loadedPlace = 0;
  }
  Choose(menu, menu.globals->StyleIndex());
  EnableDeleteForChoice(menu);
}

int16_t LM_CheckBumpChannel(DialogPtr dialog, LM_globals* globals) {
  const ControlHandle popup = LM_ItemControl(dialog, LM_BUMP_CHANNEL_ITEM);
  const int16_t channel = globals->BumpChannel();
  if (channel < 0 || popup == nullptr || channel >= GetControlMaximum(popup))
    globals->SetBumpChannel(0);
  return LM_CollectRelief(globals);
}

void LM_RunSaveFlow(LM_style_menu& menu) {
  Str255 name;
  GetChosenName(menu, name);
  if (!AskForName(menu, name))
    return;
  const bool listed = PlaceOfName(menu, name) > 0;
  const LM_bool saved =
      listed ? LM_ReplaceStyle(name, menu.globals) : LM_AddStyle(name, menu.globals);
  if (saved == 0)
    LM_ShowStyleSaveError();
  LM_RebuildStylePopup(menu.dialog, LM_STYLE_ITEM);
  const int16_t place = PlaceOfName(menu, name);
  Choose(menu, place);
  NoteLoaded(menu, place);
  EnableDeleteForChoice(menu);
}

LM_style_outcome LM_RunLoadFlow(LM_style_menu& menu) {
  const int16_t place = ChosenPlace(menu);
  if (place == menu.loadedPlace)
    return {CV_RESULT_OK, false};
  EnableDeleteForChoice(menu);
  Str255 name;
  GetChosenName(menu, name);
  if (LM_LoadStyle(name, menu.globals) == 0) {
    LM_ShowStyleLoadError();
    return {CV_RESULT_OK, false};
  }
  NoteLoaded(menu, place);
  return ShowSettings(menu);
}

LM_style_outcome LM_RunDeleteFlow(LM_style_menu& menu) {
  Str255 name;
  GetChosenName(menu, name);
  if (LM_style_ostream::IsLocked(name) != 0) {
    LM_FileDeleteLockedError(name);
    return {CV_RESULT_OK, false};
  }
  if (LM_ConfirmDelete(name) == 0)
    return {CV_RESULT_OK, false};
  if (LM_DeleteStyle(name) == 0 && LM_style_istream::Exists(name) != 0) {
    // A folder that nothing may be removed from locks its files as well.
    LM_FileDeleteLockedError(name);
    return {CV_RESULT_OK, false};
  }
  menu.globals->Default();
  // The settings keep the index of the style that is gone, where another one may stand now.
  menu.loadedPlace = 0;
  if (LM_RebuildStylePopup(menu.dialog, LM_STYLE_ITEM) != 0) {
    menu.loadedPlace = LoadOpeningStyle(menu);
    Choose(menu, menu.loadedPlace);
  }
  EnableDeleteForChoice(menu);
  return ShowSettings(menu);
}
