// The parameter dialog without a mouse, and for who cannot see it.
#include "DialogRun.h"

#include "ControlBlock.h"
#include "Events.h"

#include <QAccessible>
#include <QApplication>
#include <QKeyEvent>
#include <QWidget>
#include <functional>
#include <map>

namespace {

constexpr int ANSWERED = 60; // milliseconds until the dialog has done what it was asked for

QWidget* Window() {
  for (QWidget* widget : QApplication::topLevelWidgets()) {
    if (widget->isVisible() && widget->windowTitle() == "Lighting")
      return widget;
  }
  return nullptr;
}

// The dialog's items as a screen reader lists them.
std::map<QString, QAccessibleInterface*> Items() {
  std::map<QString, QAccessibleInterface*> items;
  QAccessibleInterface* dialog = QAccessible::queryAccessibleInterface(Window());
  for (int i = 0; dialog != nullptr && i < dialog->childCount(); ++i)
    items.emplace(dialog->child(i)->text(QAccessible::Name), dialog->child(i));
  return items;
}

void Act(const char* name, const QString& action) {
  QAccessibleInterface* item = Items().at(name);
  ASSERT_TRUE(item->actionInterface()->actionNames().contains(action)) << name;
  item->actionInterface()->doAction(action);
}

void PressKey(int key) {
  QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
  QApplication::sendEvent(Window(), &event);
}

const QString PRESS = QAccessibleActionInterface::pressAction();
const QString TOGGLE = QAccessibleActionInterface::toggleAction();
const QString FOCUS = QAccessibleActionInterface::setFocusAction();

struct Told {
  const char* name;
  QAccessible::Role role;
  const char* value;
};

TEST_F(DialogRun, EveryItemTellsItsNameRoleAndValue) {
  const Told wanted[] = {{"OK", QAccessible::Button, ""},
                         {"Save style", QAccessible::Button, ""},
                         {"Colour of this light", QAccessible::Button, ""},
                         {"Switched on", QAccessible::CheckBox, ""},
                         {"Kind of light", QAccessible::ComboBox, "Omni light"},
                         {"Style", QAccessible::ComboBox, "Default"},
                         {"Gloss", QAccessible::Slider, "-40"}, // as it is drawn
                         {"Height", QAccessible::Slider, "50"},
                         {"Lights", QAccessible::Graphic, ""},
                         {"Colour", QAccessible::StaticText, ""}};
  RunAndCancel([&](ToolboxScript& script) {
    script.Call([&] {
      LM_SetControlValue(Dialog(), LM_GLOSS_ITEM, 77);
      LM_SetControlValue(Dialog(), LM_BUMP_AMPLITUDE_ITEM, 128);
      LM_SetControlValue(Dialog(), LM_LIGHT_TYPE_ITEM, 2);
      const auto items = Items();
      EXPECT_EQ(items.count(""), 0U);
      EXPECT_EQ(items.count("Default button"), 0U) << "decoration";
      for (const Told& told : wanted) {
        SCOPED_TRACE(told.name);
        ASSERT_EQ(items.count(told.name), 1U);
        QAccessibleInterface* item = items.at(told.name);
        EXPECT_EQ(item->role(), told.role);
        EXPECT_EQ(item->text(QAccessible::Value), told.value);
        EXPECT_TRUE(item->isValid());
        QAccessibleInterface* dialog = item->parent();
        EXPECT_TRUE(dialog->rect().contains(item->rect()));
        EXPECT_EQ(dialog->child(dialog->indexOfChild(item)), item);
      }
      EXPECT_TRUE(items.at("Delete style")->state().disabled);
      EXPECT_TRUE(items.at("Switched on")->state().checked);
      EXPECT_EQ(items.at("Gloss")->valueInterface()->minimumValue(), -100);
      EXPECT_EQ(items.at("Gloss")->valueInterface()->maximumValue(), 100);
    });
  });
}

TEST_F(DialogRun, ItemsAreUsedWithoutAMouse) {
  RunAndCancel([&](ToolboxScript& script) {
    const auto expect = [&](std::function<void()> check) {
      script.Wait(ANSWERED).Call(std::move(check));
    };
    script.Call([&] { Items().at("Gloss")->valueInterface()->setCurrentValue(40); });
    expect([&] {
      EXPECT_EQ(Globals()->gloss, 179);
      EXPECT_EQ(Items().at("Gloss")->valueInterface()->currentValue(), 40);
    });
    script.Call([&] { Act("Gloss", FOCUS); }).KeyPress(kRightArrowKeyCode);
    expect([&] { EXPECT_EQ(Globals()->gloss, 180); });
    script.Call([&] { PressKey(Qt::Key_End); });
    expect([&] { EXPECT_EQ(Globals()->gloss, 255); });
    script.Call([&] { PressKey(Qt::Key_F6); });
    expect([&] { EXPECT_TRUE(Items().at("Material")->state().focused); });
    script.Call([&] { Act("Switched on", TOGGLE); });
    expect([&] { EXPECT_NE(Globals()->lights[0].on, 1); });
    script.Call([&] { Act("Switched on", FOCUS); }).Call([&] { PressKey(Qt::Key_Space); });
    expect([&] { EXPECT_EQ(Globals()->lights[0].on, 1); });
    script.Call([&] { Act("Kind of light", FOCUS); }).Call([&] { PressKey(Qt::Key_Home); });
    expect([&] { EXPECT_EQ(Globals()->lights[0].type, LM_LIGHT_DIRECTIONAL); });
  });
}

TEST_F(DialogRun, ADragOfASliderTellsItsSteps) {
  static std::vector<int> told;
  static ControlListener before; // that tells assistive programs, which are not there
  const Rect box = BoxInResource(LM_PARAMETER_DIALOG, LM_GLOSS_ITEM);
  const auto row = static_cast<int16_t>((box.top + box.bottom) / 2 + 4);
  const auto start = static_cast<int16_t>(box.left + 64 + 4);
  const auto middle = static_cast<int16_t>((start + box.right) / 2);
  RunAndCancel([&](ToolboxScript& script) {
    script.Call([] {
      before =
          ListenToControls([](ControlHandle control) { told.push_back(GetControlValue(control)); });
    });
    script.Press(start, row).Wait(ANSWERED).MoveTo(middle, row).Wait(ANSWERED);
    script.Release(box.right, row).Wait(ANSWERED).Call([] {
      ListenToControls(before);
      ASSERT_GE(told.size(), 3U);
      EXPECT_EQ(told.front(), 0);
      EXPECT_NEAR(told[1], 128, 6);
      EXPECT_EQ(told.back(), 255);
    });
  });
}

TEST_F(DialogRun, LightsAreMovedAndAddedWithoutAMouse) {
  LM_vectori2 before = {};
  int lights = 0;
  RunAndCancel([&](ToolboxScript& script) {
    script.Call([&] {
      UseLights(2);
      before = Globals()->lights[0].center;
      lights = Globals()->numLights;
    });
    script.KeyPress(kDownArrowKeyCode).KeyPress(kLeftArrowKeyCode);
    script.KeyDown(kShiftKeyCode).KeyPress(kRightArrowKeyCode).KeyUp(kShiftKeyCode);
    script.Wait(ANSWERED).Call([&] {
      const LM_vectori2 wanted = {static_cast<int16_t>(before.h + 9),
                                  static_cast<int16_t>(before.v + 1)};
      EXPECT_TRUE(Globals()->lights[0].center == wanted);
      before.h = Globals()->lights[0].radius;
    });
    script.KeyDown(kOptionKeyCode).KeyPress(kRightArrowKeyCode).KeyUp(kOptionKeyCode);
    script.Wait(ANSWERED)
        .Call([&] { EXPECT_EQ(Globals()->lights[0].radius, before.h + 1); })
        .Call([&] { Act("Light well", PRESS); })
        .Wait(100)
        .Call([&] { EXPECT_EQ(Globals()->numLights, lights + 1); });
  });
}

} // namespace
