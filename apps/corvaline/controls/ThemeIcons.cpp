#include "ThemeIcons.h"

#include <QFile>
#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>

namespace editor {

static QPixmap Drawing(QByteArray svg, const QColor& color, int size) {
  svg.replace("currentColor", color.name().toUtf8());
  QPixmap pixmap(size, size);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  QSvgRenderer(svg).render(&painter);
  return pixmap;
}

QIcon ThemeIcon(const QString& name, const QPalette& palette) {
  QFile file(":/icons/" + name + ".svg");
  QIcon icon;
  if (!file.open(QIODevice::ReadOnly))
    return icon;
  const QByteArray svg = file.readAll();
  for (const int size : {24, 48, 72}) {
    icon.addPixmap(Drawing(svg, palette.color(QPalette::Active, QPalette::WindowText), size));
    icon.addPixmap(Drawing(svg, palette.color(QPalette::Disabled, QPalette::WindowText), size),
                   QIcon::Disabled);
  }
  return icon;
}

} // namespace editor
