// Someone at the dialog who does what bytes say: presses, drags, keys and typing, anywhere and at
// any moment.
#pragma once

#include "FuzzInput.h"

#include <QEvent>
#include <QPoint>
#include <QPointer>
#include <QTimer>
#include <QWidget>

// Sends one event each time that any of the program's loops looks for events. Once the input is
// used up, lets go of the mouse, leaves whatever is open in front of the first window, and then
// presses the key Q until `Rest` is called.
class DialogUser {
public:
  DialogUser();

  // Starts acting on an input, which has to live until the next one.
  void Use(FuzzInput* input);
  // True when nothing is left of the input but to go on.
  bool IsDone() const { return _input->Empty() || _events >= MOST_EVENTS; }
  // The windows that open from now on are another session's.
  void Leave() { _first = nullptr; }
  // Closes the first window.
  void CloseFirst() { _first->close(); }

private:
  static constexpr int MOST_EVENTS = 40;

  // Opening the dialog takes so long that only one in eight of its ends is one.
  bool MayEnd() { return _ends++ % 8 == 0; }
  void Act();
  void ActByInput();
  void Finish();
  void Move();
  void SendMouse(QEvent::Type type);
  void SendKey(int key, const QString& text = {});

  FuzzInput* _input = nullptr;
  QTimer _timer;
  int _events = 0;
  int _ends = 0;       // tried so far
  bool _click = false; // the next event is its release
  QPoint _place;
  Qt::MouseButtons _buttons;
  Qt::KeyboardModifiers _modifiers;
  QPointer<QWidget> _pressed, _first;
};
