// Drawing controls in the desktop's style, with the port's text settings. Private to this layer.
#pragma once

#include "Controls.h"

#include <QPainter>
#include <QStyle>
#include <QStyleOption>
#include <functional>

// Fills in rectangle, palette, font and the states that follow from visibility and highlighting.
void PrepareOption(ControlHandle control, QStyleOption& option);
QString ControlText(ControlHandle control);
// Calls draw with a painter on the current port.
void DrawStyled(ControlHandle control,
                const std::function<void(QPainter& painter, const QStyle& style)>& draw);
