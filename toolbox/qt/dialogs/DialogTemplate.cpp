#include "DialogTemplate.h"

#include "ControlBlock.h"
#include "MacResources.h"
#include "TB_ResourceJson.h"

#include <algorithm>
#include <set>

namespace {

constexpr int MAX_SIDE = 4000;
constexpr int MAX_ITEMS = 500;

struct KindName {
  const char* name;
  ItemKind kind;
  int16_t type;
  short procID;
};

constexpr KindName KINDS[] = {
    {"button", ItemKind::Button, ctrlItem + btnCtrl, pushButProc},
    {"checkBox", ItemKind::CheckBox, ctrlItem + chkCtrl, checkBoxProc},
    {"popup", ItemKind::Popup, ctrlItem + resCtrl, popupMenuProc},
    {"control", ItemKind::Control, ctrlItem + resCtrl, 0},
    {"editText", ItemKind::EditText, editText, 0},
    {"staticText", ItemKind::StaticText, statText, 0},
    {"userItem", ItemKind::UserItem, userItem, 0},
};

const KindName* FindKind(const std::string& name) {
  const auto* found = std::find_if(std::begin(KINDS), std::end(KINDS),
                                   [&](const KindName& kind) { return name == kind.name; });
  return found != std::end(KINDS) ? found : nullptr;
}

short ShortMember(const nlohmann::json& object, const char* name, short fallback) {
  return static_cast<short>(TB_IntMember(object, name, fallback, -32768, 32767));
}

intptr_t RefConOf(const nlohmann::json& item) {
  const std::vector<int> halves = TB_IntsMember(item, "refCon");
  if (halves.size() != 2)
    return 0;
  return static_cast<int32_t>((static_cast<uint32_t>(halves[0]) << 16) |
                              (static_cast<uint32_t>(halves[1]) & 0xFFFF));
}

bool ReadBox(const nlohmann::json& item, Rect& box) {
  const std::vector<int> sides = TB_IntsMember(item, "box");
  if (sides.size() != 4)
    return false;
  for (int side : sides) {
    if (side < -MAX_SIDE || side > MAX_SIDE)
      return false;
  }
  box = ToRect(QRect(sides[0], sides[1], sides[2], sides[3]));
  return sides[2] >= 0 && sides[3] >= 0;
}

void ReadControl(const nlohmann::json& json, ItemTemplate& item) {
  item.value = ShortMember(json, "value", 0);
  item.minimum = ShortMember(json, "min", 0);
  item.maximum = ShortMember(json, "max", item.item.kind == ItemKind::CheckBox ? 1 : 0);
  item.refCon = RefConOf(json);
  item.choices = TB_StringsMember(json, "choices");
  if (item.item.kind == ItemKind::Popup)
    item.maximum = ShortMember(json, "titleWidth", 0);
}

Qt::Alignment AlignmentOf(const std::string& name) {
  if (name == "right")
    return Qt::AlignRight;
  return name == "center" ? Qt::AlignHCenter : Qt::AlignLeft;
}

bool ReadItem(const nlohmann::json& json, ItemTemplate& item) {
  const KindName* kind = FindKind(TB_StringMember(json, "kind"));
  if (kind == nullptr || !ReadBox(json, item.item.box))
    return false;
  item.item.kind = kind->kind;
  const bool enabled = TB_BoolMember(json, "enabled", kind->kind != ItemKind::StaticText);
  item.item.type = static_cast<int16_t>(kind->type | (enabled ? 0 : itemDisable));
  item.item.title = TB_StringMember(json, "title");
  item.item.name = TB_StringMember(json, "name");
  item.item.isDecoration = kind->kind == ItemKind::UserItem && !enabled;
  item.item.isPicture = TB_StringMember(json, "role") == "picture";
  item.item.small = TB_BoolMember(json, "small", false);
  item.item.align = AlignmentOf(TB_StringMember(json, "align"));
  item.procID = kind->procID;
  if ((kind->type & ctrlItem) != 0)
    ReadControl(json, item);
  if (kind->kind == ItemKind::Control) {
    const short definition = ControlDefinitionNumber(TB_StringMember(json, "definition"));
    if (definition < 0)
      return false;
    item.procID = static_cast<short>(definition * 16);
  }
  return true;
}

// Items in the order of their numbers, which must run from 1 without a gap.
bool ReadItems(const nlohmann::json& list, std::vector<ItemTemplate>& items) {
  if (!list.is_array() || list.size() > MAX_ITEMS)
    return false;
  std::vector<bool> seen(list.size(), false);
  items.resize(list.size());
  for (const nlohmann::json& json : list) {
    const int number = TB_IntMember(json, "number", 0, 0, MAX_ITEMS + 1);
    if (number < 1 || static_cast<size_t>(number) > list.size())
      return false;
    const auto index = static_cast<size_t>(number - 1);
    if (seen[index] || !ReadItem(json, items[index]))
      return false;
    seen[index] = true;
  }
  return true;
}

std::set<int16_t>& DialogsToCentre() {
  static std::set<int16_t> dialogs;
  return dialogs;
}

} // namespace

void CentreNextDialog(int16_t dialogID) {
  DialogsToCentre().insert(dialogID);
}

bool TakeCentring(int16_t dialogID) {
  return DialogsToCentre().erase(dialogID) != 0;
}

std::optional<DialogTemplate> LoadDialogTemplate(int16_t dialogID) {
  const nlohmann::json* resource = TB_Resource("DLOG", dialogID);
  if (resource == nullptr)
    return std::nullopt;
  DialogTemplate dialog;
  dialog.title = TB_StringMember(*resource, "title");
  const std::vector<int> size = TB_IntsMember(*resource, "size");
  if (size.size() != 2 || size[0] < 1 || size[1] < 1 || size[0] > MAX_SIDE || size[1] > MAX_SIDE)
    return std::nullopt;
  dialog.width = static_cast<short>(size[0]);
  dialog.height = static_cast<short>(size[1]);
  const nlohmann::json* items = TB_Member(resource, "items");
  if (items == nullptr || !ReadItems(*items, dialog.items))
    return std::nullopt;
  return dialog;
}
