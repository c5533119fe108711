// A dialog's layout as its resource tells it. Private to this layer.
#pragma once

#include "DialogWindow.h"

#include <optional>

struct ItemTemplate {
  DialogItem item; // without its control or edit field
  short procID = 0;
  short value = 0, minimum = 0, maximum = 0;
  intptr_t refCon = 0;
  std::vector<std::string> choices; // of a popup
};

struct DialogTemplate {
  std::string title;
  short width = 0, height = 0;
  std::vector<ItemTemplate> items; // item n at n - 1
};

// Nothing when there is no such resource or it makes no sense.
std::optional<DialogTemplate> LoadDialogTemplate(int16_t dialogID);

// The next dialog made from that resource opens in the middle. Asked once per dialog made.
void CentreNextDialog(int16_t dialogID);
bool TakeCentring(int16_t dialogID);
