#include "Controls.h"

#include "ControlBlock.h"
#include "Input.h"
#include "MacStrings.h"
#include "QDShapes.h"

#include <algorithm>
#include <memory>
#include <new>
#include <utility>

namespace {

void Unlink(PortState& window, ControlHandle control) {
  ControlHandle* place = &window.controls;
  while (*place != nullptr && *place != control)
    place = &(***place).nextControl;
  if (*place == control)
    *place = (**control).nextControl;
}

ControlListener& Listener() {
  static ControlListener listener = nullptr;
  return listener;
}

// What the clip region hides now is drawn by the next update event.
void InvalidateHidden(const ControlRecord& record) {
  PortState* window = WindowStateOf(record.contrlOwner);
  if (window == nullptr)
    return;
  const QRegion hidden = QRegion(ToQRect(record.contrlRect)).subtracted(window->clip);
  if (!hidden.isEmpty())
    RequestUpdate(*window, hidden);
}

void KeepValueInside(ControlHandle control) {
  ControlRecord& record = **control;
  const short highest = std::max(record.contrlMin, record.contrlMax);
  record.contrlValue = std::clamp(record.contrlValue, record.contrlMin, highest);
}

void SetBound(ControlHandle control, short ControlRecord::*bound, short value) {
  if (control == nullptr || (**control).*bound == value)
    return;
  (**control).*bound = value;
  KeepValueInside(control);
  DrawControlPart(control, inThumb);
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
  PortScope port((**control).contrlOwner);
  if (part == 0)
    EraseRect(&(**control).contrlRect);
  SendToControl(control, drawCntl, part);
  InvalidateHidden(**control);
}

ControlListener ListenToControls(ControlListener listener) {
  return std::exchange(Listener(), listener);
}

ControlHandle NewControl(WindowPtr window, const Rect* bounds, ConstStr255Param title, short value,
                         short minimum, short maximum, short procID, intptr_t refCon) {
  PortState* owner = WindowStateOf(window);
  const auto number = static_cast<short>(procID >> 4);
  const ControlDefProcPtr procedure = FindControlDefinition(number);
  std::unique_ptr<ControlBlock> block(new (std::nothrow) ControlBlock{});
  if (owner == nullptr || procedure == nullptr || !block)
    return nullptr;
  block->ownDefinition = NewControlDefinition(procedure);
  if (block->ownDefinition == nullptr)
    return nullptr;
  block->definitionNumber = number;
  ControlRecord& record = block->record;
  record.contrlOwner = window;
  record.contrlRect = *bounds;
  record.contrlVis = 255;
  record.contrlMin = minimum;
  record.contrlMax = maximum;
  record.contrlValue = value;
  record.contrlDefProc = block->ownDefinition;
  record.contrlRfCon = refCon;
  record.varCode = procID & 15;
  PLstrcpy(record.contrlTitle, title);
  block->master = &record;
  block->auxiliaryMaster = &block->auxiliary;
  ControlHandle control = &block.release()->master;
  record.nextControl = std::exchange(owner->controls, control);
  SendToControl(control, initCntl, 0);
  return control;
}

void DisposeControl(ControlHandle control) {
  if (control == nullptr)
    return;
  if (PortState* owner = WindowStateOf((**control).contrlOwner))
    Unlink(*owner, control);
  SendToControl(control, dispCntl, 0);
  DisposeHandle(BlockOf(control).ownDefinition);
  delete &BlockOf(control);
}

Boolean GetAuxCtl(ControlHandle control, AuxCtlHandle* record) {
  *record = control != nullptr ? &BlockOf(control).auxiliaryMaster : nullptr;
  return control != nullptr ? 1 : 0;
}

void HiliteControl(ControlHandle control, short part) {
  if (control == nullptr || (**control).contrlHilite == part)
    return;
  (**control).contrlHilite = static_cast<uint8_t>(part);
  DrawControlPart(control, 0);
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
  if (control != nullptr && Listener() != nullptr)
    Listener()(control);
}

void SetControlMinimum(ControlHandle control, short minimum) {
  SetBound(control, &ControlRecord::contrlMin, minimum);
}
void SetControlMaximum(ControlHandle control, short maximum) {
  SetBound(control, &ControlRecord::contrlMax, maximum);
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

void SetControlReference(ControlHandle control, intptr_t value) {
  if (control != nullptr)
    (**control).contrlRfCon = value;
}
intptr_t GetControlReference(ControlHandle control) {
  return control != nullptr ? (**control).contrlRfCon : 0;
}
