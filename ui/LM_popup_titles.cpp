#include "LM_popup_titles.h"

#include "LM_drawing_scopes.h"
#include "LM_mac_UI.h"
#include "MacResources.h"

void LM_DrawPopupTitle(DialogPtr dialog, int16_t item) {
  constexpr int16_t MARGIN = 4; // as the properties title has it
  const LM_port_scope port(dialog);
  const LM_pen_scope pen;
  const LM_small_text_scope text(bold);
  const Rect box = LM_ItemGetBox(dialog, item);
  Str255 title;
  GetIndString(title, LM_POPUP_TITLES, static_cast<int16_t>(item - LM_LIGHT_TITLE_ITEM + 1));
  // The popup stands right behind the box, so the whole of it is cleared of the line.
  EraseRect(&box);
  MoveTo(static_cast<int16_t>(box.left + MARGIN),
         static_cast<int16_t>((box.top + box.bottom) / 2 + 3));
  DrawString(title);
}
