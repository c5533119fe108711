#include "ToolboxScript.h"

#include "DialogWindow.h"
#include "Input.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPointer>
#include <QTimer>
#include <deque>
#include <utility>

namespace {

constexpr int STEP_MILLISECONDS = 8;

Qt::KeyboardModifier ModifierOf(short virtualCode) {
  switch (virtualCode) {
  case kCommandKeyCode:
    return Qt::ControlModifier;
  case kShiftKeyCode:
    return Qt::ShiftModifier;
  case kOptionKeyCode:
    return Qt::AltModifier;
  default:
    return Qt::NoModifier;
  }
}

// Desktop key of a virtual code; 0 for none.
int DesktopKey(short virtualCode) {
  constexpr std::pair<int, int> KEYS[] = {{Qt::Key_Space, Qt::Key_AsciiTilde},
                                          {Qt::Key_Escape, Qt::Key_Alt}};
  for (const auto& [first, last] : KEYS) {
    for (int key = first; key <= last; ++key) {
      if (VirtualKeyCode(key) == virtualCode)
        return key;
    }
  }
  return 0;
}

QWidget* KeyTarget() {
  if (QWidget* popup = QApplication::activePopupWidget())
    return popup;
  if (QWidget* focus = QApplication::focusWidget())
    return focus;
  if (QWidget* modal = QApplication::activeModalWidget())
    return modal->focusWidget() != nullptr ? modal->focusWidget() : modal;
  return DialogWindow::Of(FrontWindow());
}

} // namespace

struct ToolboxScript::State {
  std::deque<std::function<void()>> steps;
  QTimer timer;
  int roundsToWait = 0;
  std::function<bool()> awaited;
  Qt::KeyboardModifiers modifiers;
  bool buttonDown = false;
  QPointer<QWidget> pressed;

  void RunStep();
  void SendMouse(QEvent::Type type, short h, short v);
  void SendKey(QEvent::Type type, int key, const QString& text);
};

void ToolboxScript::State::RunStep() {
  if (roundsToWait > 0 && --roundsToWait > 0)
    return;
  if (awaited && !awaited())
    return;
  awaited = nullptr;
  if (steps.empty()) {
    timer.stop();
    return;
  }
  const std::function<void()> step = std::move(steps.front());
  steps.pop_front();
  step();
}

void ToolboxScript::State::SendMouse(QEvent::Type type, short h, short v) {
  DialogWindow* window = DialogWindow::Of(FrontWindow());
  if (window == nullptr)
    return;
  // The middle of the square, wherever the pixels of the screen are.
  const QPointF local = QPointF(h + 0.5, v + 0.5) * window->scale();
  const QPointF global = window->mapToGlobal(local);
  QWidget* target = pressed;
  if (target == nullptr)
    target = QApplication::activePopupWidget();
  if (target == nullptr)
    target = window->childAt(local.toPoint());
  if (target == nullptr)
    target = window;
  if (type == QEvent::MouseButtonPress) {
    pressed = target;
    buttonDown = true;
  } else if (type == QEvent::MouseButtonRelease) {
    pressed = nullptr;
    buttonDown = false;
  }
  const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
  const Qt::MouseButtons buttons = buttonDown ? Qt::LeftButton : Qt::NoButton;
  QMouseEvent event(type, target->mapFromGlobal(global), global, button, buttons, modifiers);
  QCoreApplication::sendEvent(target, &event);
}

void ToolboxScript::State::SendKey(QEvent::Type type, int key, const QString& text) {
  if (QWidget* target = KeyTarget()) {
    QKeyEvent event(type, key, modifiers, text);
    QCoreApplication::sendEvent(target, &event);
  }
}

ToolboxScript::ToolboxScript() : _state(std::make_unique<State>()) {
  State* state = _state.get();
  QObject::connect(&state->timer, &QTimer::timeout, [state] { state->RunStep(); });
}

ToolboxScript::~ToolboxScript() = default;

ToolboxScript& ToolboxScript::MoveTo(short h, short v) {
  State* state = _state.get();
  return Call([=] { state->SendMouse(QEvent::MouseMove, h, v); });
}

ToolboxScript& ToolboxScript::Press(short h, short v) {
  MoveTo(h, v);
  State* state = _state.get();
  return Call([=] { state->SendMouse(QEvent::MouseButtonPress, h, v); });
}

ToolboxScript& ToolboxScript::Release(short h, short v) {
  State* state = _state.get();
  return Call([=] { state->SendMouse(QEvent::MouseButtonRelease, h, v); });
}

ToolboxScript& ToolboxScript::Click(short h, short v) {
  return Press(h, v).Release(h, v);
}

ToolboxScript& ToolboxScript::Drag(short fromH, short fromV, short toH, short toV, int moves) {
  Press(fromH, fromV);
  for (int i = 1; i <= moves; ++i)
    MoveTo(static_cast<short>(fromH + (toH - fromH) * i / moves),
           static_cast<short>(fromV + (toV - fromV) * i / moves));
  return Release(toH, toV);
}

ToolboxScript& ToolboxScript::KeyDown(short virtualCode) {
  State* state = _state.get();
  return Call([=] {
    state->SendKey(QEvent::KeyPress, DesktopKey(virtualCode), QString());
    state->modifiers |= ModifierOf(virtualCode);
  });
}

ToolboxScript& ToolboxScript::KeyUp(short virtualCode) {
  State* state = _state.get();
  return Call([=] {
    state->modifiers &= ~Qt::KeyboardModifiers(ModifierOf(virtualCode));
    state->SendKey(QEvent::KeyRelease, DesktopKey(virtualCode), QString());
  });
}

ToolboxScript& ToolboxScript::KeyPress(short virtualCode) {
  return KeyDown(virtualCode).KeyUp(virtualCode);
}

ToolboxScript& ToolboxScript::Type(const char* text) {
  State* state = _state.get();
  for (const char* character = text; *character != '\0'; ++character) {
    const QString typed = QString(QLatin1Char(*character));
    const int key = typed.toUpper()[0].unicode();
    Call([=] { state->SendKey(QEvent::KeyPress, key, typed); });
    Call([=] { state->SendKey(QEvent::KeyRelease, key, typed); });
  }
  return *this;
}

ToolboxScript& ToolboxScript::ChooseFromMenu(int downs) {
  State* state = _state.get();
  for (int i = 0; i < downs; ++i)
    Call([=] { state->SendKey(QEvent::KeyPress, Qt::Key_Down, QString()); });
  return Call([=] { state->SendKey(QEvent::KeyPress, Qt::Key_Return, QString()); });
}

ToolboxScript& ToolboxScript::CloseWindow() {
  return Call([] {
    if (DialogWindow* window = DialogWindow::Of(FrontWindow()))
      window->close();
  });
}

ToolboxScript& ToolboxScript::Await(std::function<bool()> holds) {
  State* state = _state.get();
  return Call([state, holds = std::move(holds)] { state->awaited = holds; });
}

ToolboxScript& ToolboxScript::AwaitDialog() {
  return Await([] { return QApplication::activeModalWidget() != nullptr; });
}

ToolboxScript& ToolboxScript::AwaitMenu() {
  return Await([] { return QApplication::activePopupWidget() != nullptr; });
}

// In rounds of the program's own loop: while it works on what it was given the time does not pass,
// so that a slow machine has as much of it as a fast one.
ToolboxScript& ToolboxScript::Wait(int milliseconds) {
  State* state = _state.get();
  return Call([=] { state->roundsToWait = milliseconds / STEP_MILLISECONDS + 1; });
}

ToolboxScript& ToolboxScript::Call(std::function<void()> action) {
  _state->steps.push_back(std::move(action));
  return *this;
}

void ToolboxScript::Start() {
  _state->timer.start(STEP_MILLISECONDS);
}

bool ToolboxScript::Done() const {
  return _state->steps.empty();
}
