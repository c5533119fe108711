// The small dialogs of the style menu: asking for a name, and asking whether to replace or delete.
#include "HostDialogs.h"
#include "LM_alerts.h"
#include "LM_drawing_scopes.h"
#include "LM_item_drawing.h"
#include "LM_mac_UI.h"
#include "LM_mac_stream.h"

namespace {

constexpr int16_t ACCEPT_ITEM = 1;  // of the name dialog
constexpr int16_t DECLINE_ITEM = 1; // of a confirmation: what every key presses
constexpr int16_t CONFIRM_ITEM = 2;
constexpr int16_t OUTLINE_ITEM = 3;
constexpr int16_t NAME_ITEM = 4;
// What the filter makes of a click on the item that confirms: no dialog has such an item, so that
// neither a key nor the closing of the window, which hit the item itself, confirms anything.
constexpr int16_t CONFIRMED = -2;

// A dialog built from a resource that is kept in memory meanwhile.
class SmallDialog {
public:
  explicit SmallDialog(int16_t number)
      : _resource(GetResource(CV_FOUR_CHARS('D', 'L', 'O', 'G'), number)), _number(number) {
    if (_resource == nullptr)
      return;
    HNoPurge(_resource);
    CenterDialog(_resource);
  }
  SmallDialog(const SmallDialog&) = delete;
  SmallDialog& operator=(const SmallDialog&) = delete;
  ~SmallDialog() {
    if (dialog != nullptr)
      DisposeDialog(dialog);
    if (_resource != nullptr)
      HPurge(_resource);
  }
  // Builds it, its default button outlined, not shown yet.
  bool Build() {
    dialog = GetNewDialog(_number, nullptr, nullptr);
    if (dialog == nullptr)
      return false;
    LM_UserItemSetDrawProc(dialog, OUTLINE_ITEM, LM_DrawOKOutline);
    return true;
  }
  Handle Resource() const { return _resource; }

  DialogPtr dialog = nullptr;

private:
  Handle _resource;
  int16_t _number;
};

bool IsDeclineKey(const EventRecord& event) {
  const uint32_t character = event.message & charCodeMask;
  return character == kReturnCharCode || character == kEnterCharCode ||
         character == kEscapeCharCode || (character == '.' && (event.modifiers & cmdKey) != 0);
}

// The confirmations' filter, which also follows a press on the item that confirms.
Boolean FilterConfirmation(DialogPtr dialog, EventRecord* event, int16_t* item) {
  if (event->what != mouseDown)
    return LM_ConfirmDialogFilter(dialog, event, item) != 0 ? 1 : 0;
  const LM_port_scope port(dialog);
  Point point = event->where;
  GlobalToLocal(&point);
  const ControlHandle button = LM_ItemControl(dialog, CONFIRM_ITEM);
  if (TestControl(button, point) == 0)
    return 0;
  if (TrackControl(button, point, nullptr) != 0)
    *item = CONFIRMED;
  return 1;
}

LM_bool Confirm(int16_t number, ConstStr255Param name) {
  SmallDialog confirmation(number);
  if (!confirmation.Build())
    return 0;
  ParamText(name, LM_NO_TEXT, LM_NO_TEXT, LM_NO_TEXT);
  ShowWindow(confirmation.dialog);
  int16_t item = 0;
  while (item != DECLINE_ITEM && item != CONFIRM_ITEM && item != CONFIRMED && item != LM_NO_DIALOG)
    ModalDialog(FilterConfirmation, &item);
  return item == CONFIRMED ? 1 : 0;
}

} // namespace

LM_bool LM_AskSaveAsName(FilterRecord* record, StringPtr name) {
  SmallDialog asking(LM_SAVE_AS_DIALOG);
  SetUpMoveableModal(asking.Resource(), record->hostSignature);
  if (!asking.Build())
    return 0;
  SetDialogItemText(LM_ItemHandle(asking.dialog, NAME_ITEM), name);
  SelectDialogItemText(asking.dialog, NAME_ITEM, 0, INT16_MAX);
  ShowWindow(asking.dialog);
  int16_t item = 0;
  while (item != ACCEPT_ITEM && item != kCancelItem && item != LM_NO_DIALOG)
    MoveableModalDialog(record->processEvent, nullptr, &item);
  if (item != ACCEPT_ITEM)
    return 0;
  GetDialogItemText(LM_ItemHandle(asking.dialog, NAME_ITEM), name);
  if (name[0] != 0 && name[1] == '.')
    name[1] = '*';
  return 1;
}

LM_bool LM_ConfirmOverwrite(ConstStr255Param name) {
  return Confirm(LM_OVERWRITE_DIALOG, name);
}

LM_bool LM_ConfirmDelete(ConstStr255Param name) {
  return Confirm(LM_DELETE_DIALOG, name);
}

LM_bool LM_ConfirmDialogFilter(DialogPtr dialog, EventRecord* event, int16_t* item) {
  if (event->what != keyDown || !IsDeclineKey(*event))
    return 0;
  *item = DECLINE_ITEM;
  FlashDialogButton(dialog, DECLINE_ITEM);
  return 1;
}
