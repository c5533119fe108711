#include "DialogUser.h"

#include "DialogRun.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>

namespace {

constexpr int KEYS[] = {Qt::Key_Delete, Qt::Key_Backspace, Qt::Key_Tab,   Qt::Key_Up,
                        Qt::Key_Down,   Qt::Key_Left,      Qt::Key_Right, Qt::Key_Home,
                        Qt::Key_End,    Qt::Key_PageUp,    Qt::Key_Space, Qt::Key_Return,
                        Qt::Key_Down,   Qt::Key_Enter,     Qt::Key_Shift, Qt::Key_Escape};

QWidget* Front() {
  QWidget* popup = QApplication::activePopupWidget();
  return popup != nullptr ? popup : QApplication::activeModalWidget();
}

QPoint PlaceInItem(int item, int along) {
  static const std::vector<Rect> boxes = [] {
    std::vector<Rect> made;
    for (int16_t number = 1; number <= LM_PREVIEW_ON_ITEM; ++number)
      made.push_back(BoxInResource(LM_PARAMETER_DIALOG, number));
    return made;
  }();
  const Rect& box = boxes[static_cast<size_t>(item) % boxes.size()];
  return {box.left + (box.right - box.left) * along / 256, (box.top + box.bottom) / 2};
}

} // namespace

DialogUser::DialogUser() {
  QObject::connect(&_timer, &QTimer::timeout, [this] { Act(); });
  _timer.start(0);
}

void DialogUser::Use(FuzzInput* input) {
  _input = input;
  _events = 0;
  _modifiers = Qt::NoModifier;
  _place = {WORK_AREA_MIDDLE.h, WORK_AREA_MIDDLE.v};
}

void DialogUser::Act() {
  if (_first == nullptr)
    _first = QApplication::activeModalWidget();
  if (_click)
    SendMouse(QEvent::MouseButtonRelease);
  else if (IsDone())
    Finish();
  else
    ActByInput();
}

void DialogUser::Finish() {
  QWidget* front = Front();
  if (_buttons != Qt::NoButton)
    SendMouse(QEvent::MouseButtonRelease);
  else if (front != nullptr && front != _first)
    front->close();
  else
    SendKey(Qt::Key_Q);
}

void DialogUser::ActByInput() {
  ++_events;
  const int kind = _input->Below(12);
  if (kind < 6)
    Move();
  switch (kind) {
  case 0:
  case 1:
    return SendMouse(QEvent::MouseMove);
  case 2:
    return SendMouse(QEvent::MouseButtonPress);
  case 3:
    return SendMouse(QEvent::MouseButtonDblClick);
  case 4:
  case 5:
    SendMouse(QEvent::MouseButtonPress);
    _click = true;
    return;
  case 6:
  case 7:
    return SendMouse(QEvent::MouseButtonRelease);
  case 8:
    _modifiers = Qt::KeyboardModifiers(static_cast<int>(
        static_cast<unsigned>(_input->Byte()) << 25 & unsigned{Qt::KeyboardModifierMask}));
    return;
  case 9: {
    const QString text{QLatin1Char(static_cast<char>(_input->Byte()))};
    return SendKey(text.toUpper()[0].unicode(), text);
  }
  default: {
    const int key = KEYS[_input->Byte() % std::size(KEYS)];
    const bool ends = key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Escape;
    if (!ends || Front() != _first || MayEnd())
      SendKey(key);
  }
  }
}

// Near the last place, near the lights, anywhere, or in an item.
void DialogUser::Move() {
  const int kind = _input->Below(4);
  const int h = _input->Byte();
  const int v = _input->Byte();
  if (kind == 0)
    _place += QPoint((h - 128) / 4, (v - 128) / 4);
  else if (kind == 1)
    _place = QPoint(WORK_AREA_MIDDLE.h + (h - 128) / 2, WORK_AREA_MIDDLE.v + (v - 128) / 2);
  else if (kind == 2)
    _place = QPoint(h * 3 - 40, v * 2 - 40);
  else if (h % LM_PREVIEW_ON_ITEM >= LM_CANCEL_ITEM || MayEnd()) // 0 and 1: OK and Cancel
    _place = PlaceInItem(h, v);
}

void DialogUser::SendMouse(QEvent::Type type) {
  QWidget* window = QApplication::activeModalWidget();
  _click = false;
  if (type == QEvent::MouseButtonRelease)
    _buttons = Qt::NoButton;
  else if (type != QEvent::MouseMove)
    _buttons = Qt::LeftButton;
  if (window == nullptr)
    return;
  QWidget* target = _pressed;
  if (target == nullptr)
    target = QApplication::activePopupWidget();
  if (target == nullptr)
    target = window->childAt(_place);
  if (target == nullptr)
    target = window;
  _pressed = _buttons != Qt::NoButton ? target : nullptr;
  const QPointF global = window->mapToGlobal(QPointF(_place) + QPointF(0.5, 0.5));
  QMouseEvent event(type, target->mapFromGlobal(global), global,
                    type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton, _buttons,
                    _modifiers);
  QCoreApplication::sendEvent(target, &event);
}

void DialogUser::SendKey(int key, const QString& text) {
  QWidget* front = Front();
  if (front == nullptr)
    return;
  const QPointer<QWidget> target = front->focusWidget() != nullptr ? front->focusWidget() : front;
  for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
    QKeyEvent event(type, key, _modifiers, text);
    if (target != nullptr)
      QCoreApplication::sendEvent(target, &event);
  }
}
