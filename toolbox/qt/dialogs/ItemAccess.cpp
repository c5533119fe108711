#include "ItemAccess.h"

#include "ControlBlock.h"
#include "DialogWindow.h"
#include "ItemFocus.h"
#include "MenuBlock.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QPointer>
#include <algorithm>

namespace {

// Decoration is not worth telling.
bool IsTold(const DialogItem& item) {
  return !item.isDecoration && !(item.edit == nullptr && ItemName(item).isEmpty());
}

// Whether the value is told as another number.
bool IsScaled(ControlHandle control) {
  const ControlBlock& block = BlockOf(control);
  return block.toldLeast < block.toldMost && block.record.contrlMax > 0;
}

int ToldNumber(ControlHandle control, int value) {
  const ControlBlock& block = BlockOf(control);
  return IsScaled(control)
             ? block.toldLeast + value * (block.toldMost - block.toldLeast) / block.record.contrlMax
             : value;
}

// The least value that is told as this number.
int ValueOfNumber(ControlHandle control, int number) {
  const ControlBlock& block = BlockOf(control);
  if (!IsScaled(control))
    return number;
  const int range = block.toldMost - block.toldLeast;
  const int above = std::clamp<int>(number, block.toldLeast, block.toldMost) - block.toldLeast;
  return (above * block.record.contrlMax + range - 1) / range;
}

class ItemAccess : public QAccessibleInterface,
                   public QAccessibleValueInterface,
                   public QAccessibleActionInterface {
public:
  ItemAccess(DialogWindow* window, int number) : _window(window), _number(number) {}

  int Number() const { return _number; }

  bool isValid() const override { return !_window.isNull() && _Item() != nullptr; }
  QObject* object() const override { return nullptr; }
  QWindow* window() const override { return isValid() ? _window->windowHandle() : nullptr; }
  QAccessibleInterface* parent() const override {
    return isValid() ? QAccessible::queryAccessibleInterface(_window) : nullptr;
  }
  QAccessibleInterface* child(int) const override { return nullptr; }
  int childCount() const override { return 0; }
  int indexOfChild(const QAccessibleInterface*) const override { return -1; }
  QAccessibleInterface* childAt(int, int) const override { return nullptr; }

  QRect rect() const override {
    if (!isValid())
      return {};
    const QRect inWindow = _window->InWindow(*_Item());
    return {_window->mapToGlobal(inWindow.topLeft()), inWindow.size()};
  }

  QAccessible::Role role() const override;
  QAccessible::State state() const override;
  QString text(QAccessible::Text kind) const override;
  void setText(QAccessible::Text, const QString&) override {}
  void* interface_cast(QAccessible::InterfaceType kind) override {
    if (kind == QAccessible::ActionInterface)
      return static_cast<QAccessibleActionInterface*>(this);
    const bool hasValue = isValid() && HasRange(*_Item());
    return kind == QAccessible::ValueInterface && hasValue
               ? static_cast<QAccessibleValueInterface*>(this)
               : nullptr;
  }

  QVariant currentValue() const override { return _Told(GetControlValue); }
  QVariant minimumValue() const override { return _Told(GetControlMinimum); }
  QVariant maximumValue() const override { return _Told(GetControlMaximum); }
  QVariant minimumStepSize() const override { return 1; }
  void setCurrentValue(const QVariant& value) override {
    if (isValid() && HasRange(*_Item()) && IsUsable(*_Item()))
      RequestValue(*_window, _number, ValueOfNumber(_Item()->control, value.toInt()));
  }

  QStringList actionNames() const override;
  void doAction(const QString& name) override;
  QStringList keyBindingsForAction(const QString&) const override { return {}; }

private:
  DialogItem* _Item() const { return _window->Item(_number); }
  int _Told(short (*number)(ControlHandle)) const {
    const ControlHandle control = isValid() ? _Item()->control : nullptr;
    return control != nullptr ? ToldNumber(control, number(control)) : 0;
  }

  QPointer<DialogWindow> _window;
  int _number;
};

QAccessible::Role ItemAccess::role() const {
  if (!isValid())
    return QAccessible::NoRole;
  switch (_Item()->kind) {
  case ItemKind::Button:
    return QAccessible::Button;
  case ItemKind::CheckBox:
    return QAccessible::CheckBox;
  case ItemKind::Popup:
    return QAccessible::ComboBox;
  case ItemKind::Control:
    return QAccessible::Slider;
  case ItemKind::StaticText:
    return QAccessible::StaticText;
  case ItemKind::EditText:
    return QAccessible::EditableText;
  default:
    return _Item()->isPicture ? QAccessible::Graphic : QAccessible::Button;
  }
}

QAccessible::State ItemAccess::state() const {
  QAccessible::State state;
  if (!isValid()) {
    state.invalid = true;
    return state;
  }
  const DialogItem& item = *_Item();
  const bool isPassive = item.kind == ItemKind::StaticText || item.isPicture;
  state.invisible = !_window->isVisible();
  state.disabled = !isPassive && !IsUsable(item);
  state.focusable = !isPassive && IsUsable(item);
  state.focused = _window->focusedItem == _number && _window->hasFocus();
  state.checkable = item.kind == ItemKind::CheckBox;
  state.checked = state.checkable && GetControlValue(item.control) != 0;
  state.defaultButton = item.kind == ItemKind::Button && _number == kOKItem;
  state.hasPopup = item.kind == ItemKind::Popup;
  return state;
}

QString ItemAccess::text(QAccessible::Text kind) const {
  if (!isValid())
    return {};
  const DialogItem& item = *_Item();
  if (kind == QAccessible::Name)
    return ItemName(item);
  if (kind != QAccessible::Value || !HasRange(item))
    return {};
  return item.kind == ItemKind::Popup
             ? MenuText(PopupMenuOf(item.control), GetControlValue(item.control))
             : QString::number(ToldNumber(item.control, GetControlValue(item.control)));
}

QStringList ItemAccess::actionNames() const {
  if (!isValid() || !IsUsable(*_Item()))
    return {};
  switch (role()) {
  case QAccessible::Button:
    return {pressAction(), setFocusAction()};
  case QAccessible::CheckBox:
    return {toggleAction(), setFocusAction()};
  case QAccessible::ComboBox:
    return {showMenuAction(), setFocusAction()};
  case QAccessible::Slider:
    return {increaseAction(), decreaseAction(), setFocusAction()};
  default:
    return {};
  }
}

void ItemAccess::doAction(const QString& name) {
  if (!actionNames().contains(name))
    return;
  const short value = _Item()->control != nullptr ? GetControlValue(_Item()->control) : short{0};
  if (name == setFocusAction())
    FocusItem(*_window, _number);
  else if (name == increaseAction())
    RequestValue(*_window, _number, value + 1);
  else if (name == decreaseAction())
    RequestValue(*_window, _number, value - 1);
  else
    RequestPress(*_window, _number);
}

class DialogAccess : public QAccessibleWidget {
public:
  explicit DialogAccess(DialogWindow* window) : QAccessibleWidget(window, QAccessible::Dialog) {}
  ~DialogAccess() override {
    for (ItemAccess* item : _items)
      QAccessible::deleteAccessibleInterface(QAccessible::uniqueId(item));
  }
  DialogAccess(const DialogAccess&) = delete;
  DialogAccess& operator=(const DialogAccess&) = delete;

  int childCount() const override { return static_cast<int>(_Told().size()); }
  QAccessibleInterface* child(int index) const override {
    const auto told = _Told();
    return index >= 0 && index < static_cast<int>(told.size()) ? told[static_cast<size_t>(index)]
                                                               : nullptr;
  }
  int indexOfChild(const QAccessibleInterface* child) const override {
    const auto told = _Told();
    const auto found = std::find(told.begin(), told.end(), child);
    return found != told.end() ? static_cast<int>(found - told.begin()) : -1;
  }
  QAccessibleInterface* focusChild() const override {
    for (QAccessibleInterface* child : _Told()) {
      if (child->state().focused)
        return child;
    }
    return nullptr;
  }
  QAccessibleInterface* ChildOf(ControlHandle control) const {
    for (ItemAccess* item : _Items()) {
      const DialogItem* found = _Window()->Item(item->Number());
      if (found != nullptr && found->control == control)
        return item;
    }
    return nullptr;
  }

private:
  DialogWindow* _Window() const { return static_cast<DialogWindow*>(widget()); }
  // Qt may ask for a dialog's interface before the dialog has its items.
  const std::vector<ItemAccess*>& _Items() const {
    for (int number = 1 + static_cast<int>(_items.size()); _Window()->Item(number) != nullptr;
         ++number) {
      _items.push_back(new ItemAccess(_Window(), number));
      QAccessible::registerAccessibleInterface(_items.back());
    }
    return _items;
  }
  std::vector<QAccessibleInterface*> _Told() const {
    std::vector<QAccessibleInterface*> told;
    for (ItemAccess* access : _Items()) {
      const DialogItem* item = _Window()->Item(access->Number());
      if (item == nullptr || !IsTold(*item))
        continue;
      told.push_back(item->edit != nullptr ? QAccessible::queryAccessibleInterface(item->edit)
                                           : access);
    }
    return told;
  }

  mutable std::vector<ItemAccess*> _items;
};

QAccessibleInterface* MakeAccess(const QString&, QObject* object) {
  auto* window = dynamic_cast<DialogWindow*>(object);
  return window != nullptr ? new DialogAccess(window) : nullptr;
}

// Tells assistive programs that an item's control has another value.
void TellValueChange(ControlHandle control) {
  if (!QAccessible::isActive())
    return;
  DialogWindow* window = DialogWindow::Of((**control).contrlOwner);
  const auto* dialog = dynamic_cast<DialogAccess*>(QAccessible::queryAccessibleInterface(window));
  QAccessibleInterface* child = dialog != nullptr ? dialog->ChildOf(control) : nullptr;
  if (child == nullptr)
    return;
  if (child->valueInterface() != nullptr) {
    QAccessibleValueChangeEvent event(child, ToldNumber(control, GetControlValue(control)));
    QAccessible::updateAccessibility(&event);
  } else {
    QAccessible::State changed;
    changed.checked = true;
    QAccessibleStateChangeEvent event(child, changed);
    QAccessible::updateAccessibility(&event);
  }
}

} // namespace

void OfferDialogsToAssistance() {
  [[maybe_unused]] static const bool offered = [] {
    QAccessible::installFactory(MakeAccess);
    ListenToControls(TellValueChange);
    return true;
  }();
}
