#include "DialogWindow.h"

#include "Input.h"
#include "ItemAccess.h"
#include "ItemFocus.h"
#include "TextStyle.h"

#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScreen>
#include <QStyleOptionFocusRect>
#include <QWindow>
#include <algorithm>
#include <cmath>

namespace {

std::vector<DialogWindow*>& Windows() {
  static std::vector<DialogWindow*> windows;
  return windows;
}

double RatioFor(double screenRatio) {
  return ForcedRatio() > 0 ? ForcedRatio() : std::max(1.0, screenRatio);
}

bool BelongsToDialog(const QKeyEvent& event) {
  const int key = event.key();
  return key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Escape ||
         key == Qt::Key_Tab || key == Qt::Key_Backtab ||
         (key == Qt::Key_Period && event.modifiers().testFlag(Qt::ControlModifier));
}

} // namespace

EditField::EditField(DialogWindow* window) : QLineEdit(window), _window(window) {}

bool EditField::event(QEvent* event) {
  if (event->type() == QEvent::KeyPress) {
    const auto* key = static_cast<QKeyEvent*>(event);
    if (BelongsToDialog(*key)) {
      Input::Get()->KeyPressed(_window->port(), *key);
      return true;
    }
  }
  return QLineEdit::event(event);
}

double ForcedRatio() {
  bool isNumber = false;
  const double forced = qEnvironmentVariable("LIMN_SCALE").toDouble(&isNumber);
  return isNumber && std::isfinite(forced) && forced > 0 ? std::clamp(forced, 1.0, 4.0) : 0;
}

double RatioForNewWindow() {
  const QScreen* screen = QGuiApplication::primaryScreen();
  return RatioFor(screen != nullptr ? screen->devicePixelRatio() : 1.0);
}

DialogWindow::DialogWindow(GrafPort* port)
    : QWidget(nullptr, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                           Qt::WindowCloseButtonHint),
      _port(port) {
  port->state->window = this;
  auxiliaryMaster = &auxiliary;
  setWindowModality(Qt::ApplicationModal);
  setAttribute(Qt::WA_OpaquePaintEvent);
  setAttribute(Qt::WA_QuitOnClose, false);
  setMouseTracking(true);
  setFocusPolicy(Qt::StrongFocus);
  FitToScale();
  OfferDialogsToAssistance();
  Windows().push_back(this);
}

DialogWindow::~DialogWindow() {
  auto& windows = Windows();
  windows.erase(std::remove(windows.begin(), windows.end(), this), windows.end());
  if (Input* input = Input::Get())
    input->Forget(_port);
}

const std::vector<DialogWindow*>& DialogWindow::All() {
  return Windows();
}

DialogWindow* DialogWindow::Of(const GrafPort* port) {
  for (DialogWindow* window : Windows()) {
    if (window->port() == port)
      return window;
  }
  return nullptr;
}

DialogItem* DialogWindow::Item(int number) const {
  if (number < 1 || number > static_cast<int>(items.size()))
    return nullptr;
  return items[static_cast<size_t>(number - 1)].get();
}

void DialogWindow::FitToScale() {
  _port->state->windowScale = _port->state->ratio / devicePixelRatioF();
  const QRect bounds = ToQRect(_port->portRect);
  setFixedSize(static_cast<int>(std::ceil(bounds.width() * scale())),
               static_cast<int>(std::ceil(bounds.height() * scale())));
  for (const auto& item : items)
    PlaceEditField(*item);
}

QRect DialogWindow::InWindow(const DialogItem& item) const {
  const QRectF box(ToQRect(item.box));
  return QRectF(box.topLeft() * scale(), box.size() * scale()).toAlignedRect();
}

void DialogWindow::PlaceEditField(const DialogItem& item) {
  if (item.edit == nullptr)
    return;
  item.edit->setGeometry(InWindow(item));
  QFont font = PortFont(*_port);
  font.setPixelSize(std::max(1, static_cast<int>(std::lround(font.pixelSize() * scale()))));
  item.edit->setFont(font);
  item.edit->show();
}

void DialogWindow::MoveToMiddle() {
  const QWidget* owner = QApplication::activeWindow();
  const QScreen* target = owner != nullptr ? owner->screen() : screen();
  if (target == nullptr)
    return;
  const QRect available = target->availableGeometry();
  QRect frame(QPoint(0, 0), size());
  frame.moveCenter(owner != nullptr ? owner->frameGeometry().center() : available.center());
  frame.moveLeft(
      std::max(available.left(), std::min(frame.left(), available.right() - frame.width())));
  frame.moveTop(
      std::max(available.top(), std::min(frame.top(), available.bottom() - frame.height())));
  move(frame.topLeft());
}

void DialogWindow::Open() {
  if (_open)
    return;
  QWidget* owner = QApplication::activeWindow();
  if (centred)
    MoveToMiddle();
  _open = true;
  winId();
  if (owner != nullptr && windowHandle() != nullptr)
    windowHandle()->setTransientParent(owner->windowHandle());
  auto& windows = Windows();
  std::rotate(std::find(windows.begin(), windows.end(), this),
              std::find(windows.begin(), windows.end(), this) + 1, windows.end());
  show();
  raise();
  activateWindow();
  const auto editable = std::find_if(items.begin(), items.end(),
                                     [](const auto& item) { return item->edit != nullptr; });
  if (editable != items.end())
    (*editable)->edit->setFocus();
  else
    setFocus();
  InvalidateAll();
}

void DialogWindow::InvalidateAll() {
  RequestUpdate(*_port->state, ToQRect(_port->portRect));
}

void DialogWindow::FollowScreen() {
  const double ratio = RatioFor(devicePixelRatioF());
  if (ratio == _port->state->ratio && scale() == ratio / devicePixelRatioF())
    return;
  if (ratio != _port->state->ratio && !ResizePortImage(*_port->state, ratio))
    return;
  FitToScale();
  InvalidateAll();
}

bool DialogWindow::event(QEvent* event) {
  // Tab belongs to the dialog, not to the order of the child widgets.
  if (event->type() == QEvent::KeyPress) {
    keyPressEvent(static_cast<QKeyEvent*>(event));
    return true;
  }
  return QWidget::event(event);
}

void DialogWindow::paintEvent(QPaintEvent* event) {
  const QImage& image = _port->state->image;
  // The image's pixels are the screen's, whatever the units of either.
  QImage view(image.constBits(), image.width(), image.height(), image.bytesPerLine(),
              image.format());
  view.setDevicePixelRatio(devicePixelRatioF());
  QPainter painter(this);
  painter.setClipRegion(event->region());
  painter.drawImage(QPointF(0, 0), view);
  DrawFocus(painter);
}

void DialogWindow::DrawFocus(QPainter& painter) const {
  const DialogItem* item = Item(focusedItem);
  if (item == nullptr || item->edit != nullptr || !IsUsable(*item))
    return;
  QStyleOptionFocusRect option;
  option.initFrom(this);
  option.rect = InWindow(*item);
  option.state |= QStyle::State_KeyboardFocusChange | QStyle::State_HasFocus;
  option.backgroundColor = palette().color(QPalette::Window);
  style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
}

void DialogWindow::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton)
    Input::Get()->MousePressed(_port);
}

void DialogWindow::keyPressEvent(QKeyEvent* event) {
  if (!TakeFocusKey(*this, *event))
    Input::Get()->KeyPressed(_port, *event);
  event->accept();
}

void DialogWindow::closeEvent(QCloseEvent* event) {
  _port->state->closeRequested = true;
  if (Input* input = Input::Get())
    input->AbortDrag();
  event->accept();
}

void DialogWindow::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  const QEvent::Type type = event->type();
  if (type == QEvent::PaletteChange || type == QEvent::StyleChange || type == QEvent::FontChange)
    InvalidateAll();
}

WindowPtr WindowToUpdate() {
  for (DialogWindow* window : DialogWindow::All()) {
    if (!window->isOpen())
      continue;
    window->FollowScreen();
    if (!window->port()->state->update.isEmpty())
      return window->port();
  }
  return nullptr;
}

WindowPtr FrontWindow() {
  const auto& windows = DialogWindow::All();
  const auto front = std::find_if(windows.rbegin(), windows.rend(),
                                  [](const DialogWindow* window) { return window->isOpen(); });
  return front != windows.rend() ? (*front)->port() : nullptr;
}
