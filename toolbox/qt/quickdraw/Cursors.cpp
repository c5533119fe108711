#include "Cursors.h"

#include "MacResources.h"
#include "QDPorts.h"
#include "ResourcePictures.h"

#include <QApplication>
#include <QCursor>
#include <QPixmap>
#include <cmath>
#include <map>
#include <memory>

namespace {

struct CursorBlock {
  Cursor* master;
  Cursor cursor;
  QCursor shape;
};

std::map<short, std::unique_ptr<CursorBlock>>& Loaded() {
  static std::map<short, std::unique_ptr<CursorBlock>> cursors;
  return cursors;
}

QCursor LoadCursor(short cursorID) {
  if (cursorID == watchCursor)
    return QCursor(Qt::WaitCursor);
  const ResourcePicture picture = LoadResourcePicture("CURS", cursorID);
  const double ratio = qGuiApp->devicePixelRatio();
  const int side = static_cast<int>(std::lround(picture.size * ratio));
  QPixmap pixmap = QPixmap::fromImage(DrawResourcePicture(picture, QSize(side, side), false));
  if (pixmap.isNull())
    return QCursor(Qt::ArrowCursor);
  pixmap.setDevicePixelRatio(ratio);
  return QCursor(pixmap, picture.hotSpot.x(), picture.hotSpot.y());
}

// Whether the override in force is ours: a host may have one of its own.
bool& Overriding() {
  static bool overriding = false;
  return overriding;
}

} // namespace

CursHandle GetCursor(short cursorID) {
  const bool isThere = cursorID == watchCursor || TB_Resource("CURS", cursorID) != nullptr;
  if (!isThere || !TB_HasDesktop())
    return nullptr;
  auto& block = Loaded()[cursorID];
  if (!block) {
    block = std::make_unique<CursorBlock>();
    block->cursor = {cursorID};
    block->master = &block->cursor;
    block->shape = LoadCursor(cursorID);
  }
  return &block->master;
}

void SetCursor(const Cursor* cursor) {
  if (cursor == nullptr || !TB_HasDesktop())
    return;
  const auto found = Loaded().find(cursor->cursorID);
  if (found == Loaded().end())
    return;
  if (Overriding())
    QApplication::changeOverrideCursor(found->second->shape);
  else
    QApplication::setOverrideCursor(found->second->shape);
  Overriding() = true;
}

void InitCursor() {
  if (Overriding() && TB_HasDesktop())
    QApplication::restoreOverrideCursor();
  Overriding() = false;
}
