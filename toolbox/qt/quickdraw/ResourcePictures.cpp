#include "ResourcePictures.h"

#include "Ink.h"
#include "MacResources.h"
#include "TB_ResourceJson.h"

#include <QPainter>
#include <QSvgRenderer>

ResourcePicture LoadResourcePicture(const char* type, short number) {
  ResourcePicture picture;
  const nlohmann::json* resource = TB_Resource(type, number);
  if (resource == nullptr)
    return picture;
  const std::string_view bytes = TB_ResourceFile(TB_StringMember(*resource, "picture"));
  picture.bytes = QByteArray(bytes.data(), static_cast<qsizetype>(bytes.size()));
  picture.overlay = TB_BoolMember(*resource, "overlay", false);
  picture.size = TB_IntMember(*resource, "size", 24, 1, 256);
  const std::vector<int> spot = TB_IntsMember(*resource, "hotSpot");
  if (spot.size() == 2)
    picture.hotSpot = QPoint(spot[0], spot[1]);
  return picture;
}

QImage DrawResourcePicture(const ResourcePicture& picture, QSize size, bool themed) {
  if (picture.bytes.isEmpty() || size.isEmpty())
    return QImage();
  QImage image(size, QImage::Format_ARGB32_Premultiplied);
  if (image.isNull())
    return image;
  image.fill(0);
  QPainter painter(&image);
  if (picture.bytes.startsWith("\x89PNG")) {
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(image.rect(), QImage::fromData(picture.bytes, "PNG"));
    return image;
  }
  QByteArray svg = picture.bytes;
  const QColor text = QColor::fromRgb(themed ? ThemeTextColor() : 0xFF000000);
  svg.replace("currentColor", text.name().toLatin1());
  QSvgRenderer renderer(svg);
  if (!renderer.isValid())
    return QImage();
  renderer.render(&painter, QRectF(QPointF(0, 0), QSizeF(size)));
  return image;
}
