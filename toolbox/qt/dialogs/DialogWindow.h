// The real window behind a dialog's port, and the dialog's items. Private to this layer.
#pragma once

#include "Dialogs.h"
#include "PortState.h"

#include <QLineEdit>
#include <QWidget>
#include <memory>
#include <string>
#include <vector>

class DialogWindow;
class QPainter;

// A real edit field. Keys that belong to the dialog go to the queue of events.
class EditField : public QLineEdit {
public:
  explicit EditField(DialogWindow* window);

protected:
  bool event(QEvent* event) override;

private:
  DialogWindow* _window;
};

enum class ItemKind { Button, CheckBox, Popup, Control, EditText, StaticText, UserItem };

// One item of a dialog. Its address is what GetDialogItem gives out for texts.
struct DialogItem {
  ItemKind kind = ItemKind::UserItem;
  int16_t type = userItem;
  Rect box = {0, 0, 0, 0};
  std::string title;         // of a static text, what it says; ^0 to ^3 not yet filled in
  std::string name;          // what the item is called where it shows no title
  bool isDecoration = false; // a user item that is not for clicking
  bool isPicture = false;    // a user item that shows something
  bool small = false;
  Qt::Alignment align = Qt::AlignLeft;
  UserItemUPP draw = nullptr;
  ControlHandle control = nullptr;
  EditField* edit = nullptr; // child of the window
};

class DialogWindow : public QWidget {
public:
  // The port becomes this window's. Not shown.
  explicit DialogWindow(GrafPort* port);
  ~DialogWindow() override;

  // All windows, the one opened last at the end.
  static const std::vector<DialogWindow*>& All();
  // Of a port; null when it is no window's.
  static DialogWindow* Of(const GrafPort* port);

  GrafPort* port() const { return _port; }
  // Window units (the desktop's logical pixels) per unit of the port.
  double scale() const { return _port->state->windowScale; }
  // Null for a number that is no item's.
  DialogItem* Item(int number) const;
  // Where an item is in the window, in the window's units.
  QRect InWindow(const DialogItem& item) const;

  void Open();
  bool isOpen() const { return _open; }
  bool closeRequested() const { return _port->state->closeRequested; }

  void InvalidateAll();
  // Makes the port's image anew when the screen's ratio has changed.
  void FollowScreen();
  void PlaceEditField(const DialogItem& item);

  std::vector<std::unique_ptr<DialogItem>> items; // item n at n - 1
  AuxWinRec auxiliary{};
  AuxWinRec* auxiliaryMaster = nullptr;
  intptr_t refCon = 0;
  int focusedItem = 0;  // has the keyboard; see ItemFocus.h
  bool centred = false; // opens in the middle of what is in front then

protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void changeEvent(QEvent* event) override;

private:
  void FitToScale();
  void MoveToMiddle();
  void DrawFocus(QPainter& painter) const;

  GrafPort* _port;
  bool _open = false;
};

// Draws the items of a dialog within squares of its port, and nothing outside them.
void DrawWithin(DialogWindow& window, const QRegion& squares);
// The ratio that the environment forces, or 0.
double ForcedRatio();
// Of a window about to be made: the ratio its port needs.
double RatioForNewWindow();
// A window that waits for an update event, or null.
WindowPtr WindowToUpdate();
// The visible window opened last, or null.
WindowPtr FrontWindow();
