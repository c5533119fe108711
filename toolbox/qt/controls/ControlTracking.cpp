#include "ControlBlock.h"
#include "Events.h"
#include "PortState.h"
#include "QDRegions.h"

namespace {

intptr_t PackPoint(Point point) {
  return static_cast<intptr_t>(
      static_cast<int32_t>((static_cast<uint32_t>(static_cast<uint16_t>(point.v)) << 16) |
                           static_cast<uint16_t>(point.h)));
}

short TrackButton(ControlHandle control, short part) {
  bool inside = true;
  HiliteControl(control, part);
  const auto follow = [&] {
    Point mouse;
    GetMouse(&mouse);
    inside = PartAt(control, mouse) == part;
    HiliteControl(control, inside ? part : short{0});
  };
  while (StillDown())
    follow();
  follow();
  HiliteControl(control, 0);
  // The close of a window ends the drag, and is no click wherever the mouse was.
  const PortState* window = WindowStateOf((**control).contrlOwner);
  return inside && window != nullptr && !window->closeRequested ? part : short{0};
}

} // namespace

short PartAt(ControlHandle control, Point point) {
  return static_cast<short>(SendToControl(control, testCntl, PackPoint(point)));
}

short TestControl(ControlHandle control, Point point) {
  if (control == nullptr || !IsVisible(control) || !IsActive(control))
    return 0;
  return PartAt(control, point);
}

short FindControl(Point point, WindowPtr window, ControlHandle* found) {
  const PortState* owner = WindowStateOf(window);
  short part = 0;
  ControlHandle control = owner != nullptr ? owner->controls : nullptr;
  while (control != nullptr && (part = TestControl(control, point)) == 0)
    control = (**control).nextControl;
  *found = control;
  return part;
}

short TrackControl(ControlHandle control, Point start, ControlActionProcPtr) {
  const short part = TestControl(control, start);
  if (part == 0)
    return 0;
  PortScope port((**control).contrlOwner);
  if (part >= inThumb) {
    SendToControl(control, dragCntl, part);
    return part;
  }
  if (BlockOf(control).definitionNumber == POPUP_DEFINITION)
    return TrackPopup(control);
  return TrackButton(control, part);
}
