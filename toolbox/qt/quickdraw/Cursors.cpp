#include "Cursors.h"

#include "ResourcePictures.h"

#include <QApplication>
#include <QCursor>
#include <QPixmap>
#include <QScreen>
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

struct ShapeName {
  const char* name;
  Qt::CursorShape shape;
};
constexpr ShapeName SHAPES[] = {{"arrow", Qt::ArrowCursor},   {"wait", Qt::WaitCursor},
                                {"cross", Qt::CrossCursor},   {"ibeam", Qt::IBeamCursor},
                                {"hand", Qt::OpenHandCursor}, {"closedHand", Qt::ClosedHandCursor}};

bool HasDesktop() {
  return qobject_cast<QApplication*>(QCoreApplication::instance()) != nullptr;
}

QCursor CursorFromPicture(const ResourcePicture& picture) {
  const double ratio = qGuiApp->devicePixelRatio();
  const int side = static_cast<int>(std::lround(picture.size * ratio));
  QPixmap pixmap = QPixmap::fromImage(DrawResourcePicture(picture, QSize(side, side), false));
  if (pixmap.isNull())
    return QCursor(Qt::ArrowCursor);
  pixmap.setDevicePixelRatio(ratio);
  return QCursor(pixmap, picture.hotSpot.x(), picture.hotSpot.y());
}

QCursor StandardCursor(short cursorID) {
  switch (cursorID) {
  case iBeamCursor:
    return QCursor(Qt::IBeamCursor);
  case watchCursor:
    return QCursor(Qt::WaitCursor);
  default:
    return QCursor(Qt::CrossCursor);
  }
}

QCursor LoadCursor(short cursorID) {
  if (!HasResourcePicture("CURS", cursorID))
    return StandardCursor(cursorID);
  const ResourcePicture picture = LoadResourcePicture("CURS", cursorID);
  for (const ShapeName& shape : SHAPES) {
    if (picture.shape == QLatin1String(shape.name))
      return QCursor(shape.shape);
  }
  return CursorFromPicture(picture);
}

// Whether the override in force is ours: a host may have one of its own.
bool& Overriding() {
  static bool overriding = false;
  return overriding;
}

} // namespace

CursHandle GetCursor(short cursorID) {
  const bool standard = cursorID >= iBeamCursor && cursorID <= watchCursor;
  if (!HasDesktop() || (!standard && !HasResourcePicture("CURS", cursorID)))
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
  if (cursor == nullptr || !HasDesktop())
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
  if (Overriding() && HasDesktop())
    QApplication::restoreOverrideCursor();
  Overriding() = false;
}
