#include "Input.h"

#include <QApplication>
#include <QCursor>
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPointer>
#include <QTimer>
#include <QWidget>
#include <QWindow>
#include <algorithm>

namespace {

constexpr size_t MAX_QUEUED_EVENTS = 256;

Point ToPoint(QPointF global, const GrafPort& port) {
  Point point = ToLocal(port, global);
  AddPt(GlobalOrigin(port), &point);
  return point;
}

// The event's own global position is rounded; the one within its receiver is not.
QPointF GlobalPosition(const QObject* receiver, const QMouseEvent& event) {
  if (receiver->isWidgetType())
    return static_cast<const QWidget*>(receiver)->mapToGlobal(event.position());
  if (receiver->isWindowType())
    return static_cast<const QWindow*>(receiver)->mapToGlobal(event.position());
  return event.globalPosition();
}

bool IsTopLevel(const QObject* object) {
  if (!object->isWidgetType())
    return false;
  const auto* widget = static_cast<const QWidget*>(object);
  return widget->isWindow() && widget->windowType() != Qt::Popup &&
         widget->windowType() != Qt::ToolTip;
}

} // namespace

Input* Input::Get() {
  static QPointer<Input> input;
  auto* application = qobject_cast<QApplication*>(QCoreApplication::instance());
  if (application == nullptr)
    return nullptr;
  if (input.isNull())
    input = new Input(application);
  return input;
}

Input::Input(QObject* parent) : QObject(parent), _mouse(QCursor::pos()) {
  parent->installEventFilter(this);
}

bool Input::eventFilter(QObject* receiver, QEvent* event) {
  switch (event->type()) {
  case QEvent::MouseButtonPress:
  case QEvent::MouseButtonDblClick:
  case QEvent::MouseButtonRelease:
  case QEvent::MouseMove:
    WatchMouse(receiver, *static_cast<QMouseEvent*>(event));
    break;
  case QEvent::KeyPress:
  case QEvent::KeyRelease: {
    const auto* key = static_cast<QKeyEvent*>(event);
    if (!key->isAutoRepeat())
      SetKey(VirtualKeyCode(key->key()), event->type() == QEvent::KeyPress);
    break;
  }
  case QEvent::Close:
  case QEvent::Quit:
    if (receiver == QCoreApplication::instance() || IsTopLevel(receiver))
      AbortDrag();
    break;
  case QEvent::ApplicationDeactivate:
    _keys.fill(0);
    NoteChange();
    break;
  default:
    break;
  }
  return false;
}

void Input::WatchMouse(const QObject* receiver, const QMouseEvent& event) {
  _mouse = GlobalPosition(receiver, event);
  SetModifiers(event.modifiers());
  NoteChange();
  if (!event.buttons().testFlag(Qt::LeftButton))
    ReleaseButton();
}

void Input::SetModifiers(Qt::KeyboardModifiers modifiers) {
  SetKey(kShiftKeyCode, modifiers.testFlag(Qt::ShiftModifier));
  SetKey(kCommandKeyCode, modifiers.testFlag(Qt::ControlModifier));
  SetKey(kOptionKeyCode, modifiers.testFlag(Qt::AltModifier));
}

void Input::SetKey(int code, bool down) {
  if (code < 0 || code > 127)
    return;
  const auto bit = static_cast<uint8_t>(1u << (code & 7));
  uint8_t& byte = _keys[static_cast<size_t>(code) >> 3];
  const auto changed = static_cast<uint8_t>(down ? byte | bit : byte & ~bit);
  if (changed != byte)
    NoteChange();
  byte = changed;
}

uint16_t Input::Modifiers() const {
  const auto held = [this](short code) { return KeyIsDown(_keys.data(), code); };
  int modifiers = _buttonDown ? 0 : btnState;
  modifiers |= held(kShiftKeyCode) ? shiftKey : 0;
  modifiers |= held(kCommandKeyCode) ? cmdKey : 0;
  modifiers |= held(kOptionKeyCode) ? optionKey : 0;
  return static_cast<uint16_t>(modifiers);
}

void Input::Push(uint16_t what, uint32_t message, WindowPtr window) {
  if (_queue.size() >= MAX_QUEUED_EVENTS)
    _queue.pop_front();
  const EventRecord record = {what, message, TickCount(), ToPoint(_mouse, *window), Modifiers()};
  _queue.push_back({record, window, _mouse, _keys});
  NoteChange();
}

void Input::MousePressed(WindowPtr window) {
  _buttonDown = true;
  _pressedIn = window;
  Push(mouseDown, 0, window);
}

void Input::ReleaseButton() {
  if (!_buttonDown)
    return;
  _buttonDown = false;
  Push(mouseUp, 0, _pressedIn);
  _pressedIn = nullptr;
}

void Input::RequestItem(WindowPtr window, uint16_t what, int item, short value) {
  const uint32_t message = static_cast<uint32_t>(item) << 16 | static_cast<uint16_t>(value);
  Push(what, message, window);
}

void Input::PostDrag(WindowPtr window, QPointF from, QPointF to) {
  const QPointF mouse = _mouse;
  const KeyStates keys = _keys;
  _keys.fill(0);
  _mouse = from;
  Push(mouseDown, 0, window);
  _mouse = to;
  Push(mouseUp, 0, window);
  _mouse = mouse;
  _keys = keys;
}

void Input::AbortDrag() {
  ReleaseButton();
  NoteChange();
}

void Input::KeyPressed(WindowPtr window, const QKeyEvent& event) {
  const int code = VirtualKeyCode(event.key());
  const uint32_t message = (static_cast<uint32_t>(std::max(code, 0)) << 8) | CharacterOf(event);
  if (code >= 0 || CharacterOf(event) != 0)
    Push(event.isAutoRepeat() ? autoKey : keyDown, message, window);
}

void Input::Forget(WindowPtr window) {
  std::erase_if(_queue, [&](const QueuedEvent& event) { return event.window == window; });
  if (_pressedIn == window) {
    _pressedIn = nullptr;
    _buttonDown = false;
  }
  _taken.reset();
}

void Input::Pump(int milliseconds) {
  const uint64_t before = _changes;
  QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
  if (milliseconds <= 0)
    return;
  QDeadlineTimer deadline(milliseconds);
  QTimer alarm;
  alarm.setSingleShot(true);
  alarm.setTimerType(Qt::PreciseTimer);
  while (_changes == before && !deadline.hasExpired()) {
    // Set anew each time: an alarm that rang a moment early must not leave a wait without end.
    alarm.start(static_cast<int>(deadline.remainingTime()) + 1);
    QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
  }
}

const QueuedEvent* Input::PendingRelease() const {
  for (const QueuedEvent& event : _queue) {
    if (event.record.what == mouseUp)
      return &event;
  }
  return _taken ? &*_taken : nullptr;
}

std::optional<QueuedEvent> Input::TakeEvent() {
  _taken.reset();
  if (_queue.empty())
    return std::nullopt;
  const QueuedEvent taken = _queue.front();
  _queue.pop_front();
  if (taken.record.what == mouseUp)
    _taken = taken;
  return taken;
}

QPointF Input::Mouse() const {
  const QueuedEvent* release = PendingRelease();
  return release != nullptr ? release->mouse : _mouse;
}

const KeyStates& Input::Keys() const {
  const QueuedEvent* release = PendingRelease();
  return release != nullptr ? release->keys : _keys;
}

void RequestUpdate(PortState& state, const QRegion& units) {
  state.update += units.intersected(ToQRect(state.port->portRect));
  if (Input* input = Input::Get())
    input->NoteChange();
}
