// The tool bar's pictures, in the colour of the desktop's text.
#pragma once

#include <QIcon>
#include <QPalette>

namespace editor {

// icons/NAME.svg, whose "currentColor" becomes the palette's text colour; paler when disabled.
QIcon ThemeIcon(const QString& name, const QPalette& palette);

} // namespace editor
