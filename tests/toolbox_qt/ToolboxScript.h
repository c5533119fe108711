// Scripted input, for tests of anything built on the Toolbox: real events of the desktop, sent from
// a timer while the program's own loops (ModalDialog, StillDown, menus) run.
//
//   ToolboxScript script;
//   script.Click(30, 40).KeyPress(kEscapeKeyCode);
//   script.Start();
//   ModalDialog(filter, &item);
//
// Steps run one per few milliseconds, in order, once Start was called and events are let run.
// Points are in the port of the window that is in front when the step runs.
#pragma once

#include "MacTypes.h"

#include <functional>
#include <memory>

class ToolboxScript {
public:
  ToolboxScript();
  // Steps not yet run are dropped.
  ~ToolboxScript();
  ToolboxScript(const ToolboxScript&) = delete;
  ToolboxScript& operator=(const ToolboxScript&) = delete;

  ToolboxScript& MoveTo(short h, short v);
  ToolboxScript& Press(short h, short v);
  ToolboxScript& Release(short h, short v);
  // Press and release.
  ToolboxScript& Click(short h, short v);
  // Press at the first point, move along a line in `moves` steps, release at the second.
  ToolboxScript& Drag(short fromH, short fromV, short toH, short toV, int moves = 4);
  // A key by its virtual code (Events.h), and modifiers by theirs: 55, 56 and 58.
  ToolboxScript& KeyDown(short virtualCode);
  ToolboxScript& KeyUp(short virtualCode);
  ToolboxScript& KeyPress(short virtualCode);
  // Types ASCII characters into whatever has the keyboard, an open menu too.
  ToolboxScript& Type(const char* text);
  // Down-arrow `downs` times, then Return, in the menu that is open when the step runs.
  ToolboxScript& ChooseFromMenu(int downs);
  // Closes the front window, as its title bar's button does.
  ToolboxScript& CloseWindow();
  ToolboxScript& Wait(int milliseconds);
  // The next step runs once this holds, however long that takes.
  ToolboxScript& Await(std::function<bool()> holds);
  // Once a modal window is open.
  ToolboxScript& AwaitDialog();
  // Once a menu is.
  ToolboxScript& AwaitMenu();
  // Runs something between two steps, such as a check or a screenshot.
  ToolboxScript& Call(std::function<void()> action);

  void Start();
  bool Done() const;

private:
  struct State;
  std::unique_ptr<State> _state;
};
