#include "StyledControl.h"

#include "TextStyle.h"

#include <QApplication>
#include <QFontMetrics>

void PrepareOption(ControlHandle control, QStyleOption& option) {
  const ControlRecord& record = **control;
  option.rect = ToQRect(record.contrlRect);
  option.palette = QApplication::palette();
  option.fontMetrics = QFontMetrics(PortFont(*CurrentPort()));
  option.direction = QApplication::layoutDirection();
  option.state = QStyle::State_Active;
  if (record.contrlHilite != 255)
    option.state |= QStyle::State_Enabled;
  else
    option.palette.setCurrentColorGroup(QPalette::Disabled);
  if (record.contrlHilite != 0 && record.contrlHilite != 255)
    option.state |= QStyle::State_Sunken;
}

QString ControlText(ControlHandle control) {
  // An ampersand would mark a mnemonic.
  return ToQString((**control).contrlTitle).replace('&', QLatin1String("&&"));
}

void DrawStyled(ControlHandle control,
                const std::function<void(QPainter& painter, const QStyle& style)>& draw) {
  PortState& state = CurrentState();
  if (!CanDraw(state.port))
    return;
  PortPainter port(state);
  if (!port.painter.isActive())
    return;
  port.changed = ToQRect((**control).contrlRect);
  port.painter.setFont(PortFont(*state.port));
  draw(port.painter, *QApplication::style());
}
