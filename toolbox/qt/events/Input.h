// The state of mouse and keys, and the queue of events, as the desktop's events leave them. Private
// to this layer.
#pragma once

#include "Events.h"
#include "PortState.h"

#include <QObject>
#include <QPointF>
#include <array>
#include <deque>
#include <optional>

class QKeyEvent;
class QMouseEvent;

typedef std::array<uint8_t, 16> KeyStates;

// An event with what held when it happened.
struct QueuedEvent {
  EventRecord record;
  WindowPtr window; // it belongs to; null for none
  QPointF mouse;    // global
  KeyStates keys;
};

// Watches every event of the application from its first use on. One per process.
class Input : public QObject {
public:
  // Null without a desktop.
  static Input* Get();

  bool eventFilter(QObject* receiver, QEvent* event) override;

  // Puts a press into the queue. Releases are put there by the watch itself.
  void MousePressed(WindowPtr window);
  void KeyPressed(WindowPtr window, const QKeyEvent& event);
  // Puts an event of this layer's own into the queue.
  void RequestItem(WindowPtr window, uint16_t what, int item, short value);
  // Puts a press and its release into the queue, between two global points, no key held.
  void PostDrag(WindowPtr window, QPointF from, QPointF to);
  // Ends a drag as if the button had been released.
  void AbortDrag();
  // Drops what is queued for a window that goes away.
  void Forget(WindowPtr window);

  // Lets events run; waits up to milliseconds for mouse, keys or windows to change.
  void Pump(int milliseconds);
  // The release that ended the drag, while it is in the queue.
  const QueuedEvent* PendingRelease() const;
  std::optional<QueuedEvent> TakeEvent();

  bool ButtonDown() const { return _buttonDown; }
  // Global; the moment of release counts after a drag.
  QPointF Mouse() const;
  const KeyStates& Keys() const;
  // Counts changes of mouse, keys and windows.
  uint64_t Changes() const { return _changes; }
  void NoteChange() { ++_changes; }

private:
  explicit Input(QObject* parent);
  void WatchMouse(const QObject* receiver, const QMouseEvent& event);
  void SetModifiers(Qt::KeyboardModifiers modifiers);
  void SetKey(int code, bool down);
  void ReleaseButton();
  void Push(uint16_t what, uint32_t message, WindowPtr window);
  uint16_t Modifiers() const;

  std::deque<QueuedEvent> _queue;
  std::optional<QueuedEvent> _taken; // release that was taken, in force until the next event
  bool _buttonDown = false;
  WindowPtr _pressedIn = nullptr;
  QPointF _mouse;
  KeyStates _keys{};
  uint64_t _changes = 0;
};

// Virtual key code of a desktop key, -1 for one without.
int VirtualKeyCode(int key);
// Sixtieths of a second since some moment.
uint32_t TickCount();
// Parts of a port, in its units, that its window's next update event redraws.
void RequestUpdate(PortState& state, const QRegion& units);
// The character that a key types: ASCII, or the control characters that stand for keys; 0 for none.
uint8_t CharacterOf(const QKeyEvent& event);
