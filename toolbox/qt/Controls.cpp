#include "Controls.h"

#include "ControlBlock.h"
#include "DialogWindow.h"
#include "ItemAccess.h"
#include "MacStrings.h"
#include "QDShapes.h"

#include <algorithm>
#include <memory>
#include <new>

namespace {

void Link(DialogWindow& window, ControlHandle control) {
  (**control).nextControl = window.controls;
  window.controls = control;
}

void Unlink(DialogWindow& window, ControlHandle control) {
  ControlHandle* place = &window.controls;
  while (*place != nullptr && *place != control)
    place = &(***place).nextControl;
  if (*place == control)
    *place = (**control).nextControl;
}

void EraseControl(ControlHandle control) {
  PortScope port((**control).contrlOwner);
  EraseRect(&(**control).contrlRect);
}

// What the clip region hides now is drawn by the next update event.
void InvalidateHidden(const ControlRecord& record) {
  DialogWindow* window = DialogWindow::Of(record.contrlOwner);
  const QRegion hidden =
      QRegion(ToQRect(record.contrlRect)).subtracted(record.contrlOwner->state->clip);
  if (window != nullptr && !hidden.isEmpty())
    window->Invalidate(hidden);
}

void PlaceControl(ControlHandle control, const Rect& rect) {
  ControlRecord& record = **control;
  if (IsVisible(control))
    EraseControl(control);
  record.contrlRect = rect;
  Draw1Control(control);
}

void KeepValueInside(ControlHandle control) {
  ControlRecord& record = **control;
  const short highest = std::max(record.contrlMin, record.contrlMax);
  record.contrlValue = std::clamp(record.contrlValue, record.contrlMin, highest);
}

} // namespace

int32_t SendToControl(ControlHandle control, short message, intptr_t param) {
  PortScope port((**control).contrlOwner);
  const ControlRecord& record = **control;
  return CallControlDefinition(record.contrlDefProc, record.varCode, control, message, param);
}

void DrawControlPart(ControlHandle control, short part) {
  if (control == nullptr || !IsVisible(control))
    return;
  if (part == 0)
    EraseControl(control);
  SendToControl(control, drawCntl, part);
  InvalidateHidden(**control);
}

ControlHandle NewControl(WindowPtr window, const Rect* bounds, ConstStr255Param title,
                         Boolean visible, short value, short minimum, short maximum, short procID,
                         intptr_t refCon) {
  DialogWindow* owner = DialogWindow::Of(window);
  const auto number = static_cast<short>(procID >> 4);
  const ControlDefProcPtr procedure = FindControlDefinition(number);
  std::unique_ptr<ControlBlock> block(new (std::nothrow) ControlBlock{});
  if (owner == nullptr || procedure == nullptr || !block)
    return nullptr;
  block->ownDefinition = NewOwnDefinition(procedure);
  if (block->ownDefinition == nullptr)
    return nullptr;
  block->definitionNumber = number;
  ControlRecord& record = block->record;
  record.contrlOwner = window;
  record.contrlRect = *bounds;
  record.contrlVis = visible ? 255 : 0;
  record.contrlMin = minimum;
  record.contrlMax = maximum;
  record.contrlValue = value;
  record.contrlDefProc = block->ownDefinition;
  record.contrlRfCon = refCon;
  record.varCode = procID & 15;
  if (title != nullptr)
    PLstrcpy(record.contrlTitle, title);
  block->master = &record;
  block->auxiliaryMaster = &block->auxiliary;
  ControlHandle control = &block.release()->master;
  BlockOf(control).auxiliary.acOwner = control;
  Link(*owner, control);
  SendToControl(control, initCntl, 0);
  return control;
}

void DisposeControl(ControlHandle control) {
  if (control == nullptr)
    return;
  if (DialogWindow* owner = DialogWindow::Of((**control).contrlOwner)) {
    HideControl(control);
    Unlink(*owner, control);
  }
  SendToControl(control, dispCntl, 0);
  DisposeOwnDefinition(BlockOf(control).ownDefinition);
  delete &BlockOf(control);
}

Boolean GetAuxCtl(ControlHandle control, AuxCtlHandle* record) {
  *record = control != nullptr ? &BlockOf(control).auxiliaryMaster : nullptr;
  return control != nullptr ? 1 : 0;
}

void Draw1Control(ControlHandle control) {
  DrawControlPart(control, 0);
}

void DrawControls(WindowPtr window) {
  const DialogWindow* owner = DialogWindow::Of(window);
  if (owner == nullptr)
    return;
  for (ControlHandle control = owner->controls; control != nullptr;
       control = (**control).nextControl)
    Draw1Control(control);
}

void ShowControl(ControlHandle control) {
  if (control == nullptr || IsVisible(control))
    return;
  (**control).contrlVis = 255;
  Draw1Control(control);
}

void HideControl(ControlHandle control) {
  if (control == nullptr || !IsVisible(control))
    return;
  (**control).contrlVis = 0;
  EraseControl(control);
}

void HiliteControl(ControlHandle control, short part) {
  if (control == nullptr || (**control).contrlHilite == part)
    return;
  (**control).contrlHilite = static_cast<uint8_t>(part);
  Draw1Control(control);
}

void MoveControl(ControlHandle control, short h, short v) {
  if (control == nullptr)
    return;
  Rect rect = (**control).contrlRect;
  OffsetRect(&rect, static_cast<short>(h - rect.left), static_cast<short>(v - rect.top));
  PlaceControl(control, rect);
}

void SizeControl(ControlHandle control, short width, short height) {
  if (control == nullptr)
    return;
  Rect rect = (**control).contrlRect;
  rect.right = static_cast<short>(rect.left + width);
  rect.bottom = static_cast<short>(rect.top + height);
  PlaceControl(control, rect);
}

void SetControlValue(ControlHandle control, short value) {
  if (control == nullptr)
    return;
  const short before = (**control).contrlValue;
  (**control).contrlValue = value;
  KeepValueInside(control);
  if ((**control).contrlValue == before)
    return;
  DrawControlPart(control, inThumb);
  TB_TellControlValue(control);
}

void TB_TellControlBetween(ControlHandle control, short least, short most) {
  if (control == nullptr)
    return;
  BlockOf(control).toldLeast = least;
  BlockOf(control).toldMost = most;
}

void TB_TellControlValue(ControlHandle control) {
  DialogWindow* owner = control != nullptr ? DialogWindow::Of((**control).contrlOwner) : nullptr;
  if (owner != nullptr)
    TellValueChange(*owner, control);
}

void SetControlMinimum(ControlHandle control, short minimum) {
  if (control == nullptr || (**control).contrlMin == minimum)
    return;
  (**control).contrlMin = minimum;
  KeepValueInside(control);
  DrawControlPart(control, inThumb);
}

void SetControlMaximum(ControlHandle control, short maximum) {
  if (control == nullptr || (**control).contrlMax == maximum)
    return;
  (**control).contrlMax = maximum;
  KeepValueInside(control);
  DrawControlPart(control, inThumb);
}

short GetControlValue(ControlHandle control) {
  return control != nullptr ? (**control).contrlValue : short{0};
}
short GetControlMinimum(ControlHandle control) {
  return control != nullptr ? (**control).contrlMin : short{0};
}
short GetControlMaximum(ControlHandle control) {
  return control != nullptr ? (**control).contrlMax : short{0};
}

void SetControlTitle(ControlHandle control, ConstStr255Param title) {
  if (control == nullptr)
    return;
  PLstrcpy((**control).contrlTitle, title);
  Draw1Control(control);
}

void GetControlTitle(ControlHandle control, Str255 title) {
  title[0] = 0;
  if (control != nullptr)
    PLstrcpy(title, (**control).contrlTitle);
}

void SetControlReference(ControlHandle control, intptr_t value) {
  if (control != nullptr)
    (**control).contrlRfCon = value;
}
intptr_t GetControlReference(ControlHandle control) {
  return control != nullptr ? (**control).contrlRfCon : 0;
}
void SetControlAction(ControlHandle control, ControlActionProcPtr action) {
  if (control != nullptr)
    (**control).contrlAction = action;
}
short GetControlVariant(ControlHandle control) {
  return control != nullptr ? (**control).varCode : short{0};
}
