#include "HostDialogs.h"

#include "DialogTemplate.h"
#include "Ink.h"
#include "QDShapes.h"
#include "ResourceHandles.h"

namespace {

constexpr OSType DIALOG_TYPE = CV_FOUR_CHARS('D', 'L', 'O', 'G');
constexpr short HALF_WIDTH = 5;

// The triangle under the pen, filled so that it stands out against the bar it points to.
void FillIndicator(PortState& state, Point tip) {
  const auto h = static_cast<double>(tip.h);
  const auto v = static_cast<double>(tip.v);
  const double ratio = state.ratio;
  QPainterPath path;
  path.moveTo((h + 0.5) * ratio, (v + 0.5) * ratio);
  path.lineTo((h + HALF_WIDTH + 0.5) * ratio, (v + HALF_WIDTH + 0.5) * ratio);
  path.lineTo((h - HALF_WIDTH + 0.5) * ratio, (v + HALF_WIDTH + 0.5) * ratio);
  path.closeSubpath();
  const QRect box(tip.h - HALF_WIDTH, tip.v, 2 * HALF_WIDTH + 1, HALF_WIDTH + 1);
  const QRegion saved = state.deviceClip;
  state.deviceClip &= DeviceRect(state, box);
  ComposePath(state, path, Ink{ForegroundInk(state, box), patCopy});
  state.deviceClip = saved;
}

} // namespace

void CenterDialog(Handle dialogResource) {
  const int16_t number = ResourceNumber(dialogResource, DIALOG_TYPE);
  if (number != INT16_MIN)
    CentreNextDialog(number);
}

Boolean SetUpMoveableModal(Handle dialogResource, OSType hostSignature) {
  return hostSignature == CV_HOST_SIGNATURE &&
                 ResourceNumber(dialogResource, DIALOG_TYPE) != INT16_MIN
             ? 1
             : 0;
}

void DrawPISlider() {
  PortState& state = CurrentState();
  const Point tip = state.port->pen.pnLoc;
  if (CanDraw(state.port))
    FillIndicator(state, tip);
  Line(HALF_WIDTH, HALF_WIDTH);
  Line(-2 * HALF_WIDTH, 0);
  Line(HALF_WIDTH, -HALF_WIDTH);
  MoveTo(tip.h, tip.v);
}
