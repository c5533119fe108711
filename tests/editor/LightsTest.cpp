// The lights on the picture: what edits keep, what the mouse and the keys do, and the panel.
#include "EditorRun.h"

#include "LM_style_fields.h"
#include "LM_style_json.h"
#include "LM_style_lighting.h"
#include "Temperature.h"

#include <QAccessible>
#include <QSignalSpy>
#include <QTest>

#include <cmath>

using editor::LightsModel;

namespace {

std::string Json(const LM_style& style) {
  return LM_StyleToJson(style);
}

LM_style TwoLights() {
  LM_style style = LM_NewStyle();
  style.numLights = style.lightsRead = 2;
  style.lights[0] = editor::NewLightAt({-40, 10});
  style.lights[1] = editor::NewLightAt({30, -20});
  style.lights[1].type = LM_STYLE_OMNI;
  return style;
}

// Counts what a model has to say. Steps come back to it, as a document sends them.
struct Steps {
  explicit Steps(LightsModel& model) {
    QObject::connect(&model, &LightsModel::kept, &model,
                     [this, &model](const LM_style& style, const QString& step) {
                       names << step;
                       last = style;
                       model.setStyle(style);
                     });
    QObject::connect(&model, &LightsModel::refused, &model, [this] { ++refusals; });
  }
  QStringList names;
  LM_style last = {};
  int refusals = 0;
};

LightsModel::Edit MovedBy(const LightsModel& model, float x, float y) {
  return [&model, x, y](LM_style& style) {
    LM_light_figure figure = model.figure(model.selected());
    figure.center = {figure.center.x + x, figure.center.y + y};
    editor::SetFigure(style.lights[model.selected()], figure);
  };
}

} // namespace

TEST(Lights, WhatIsTakenBackLeavesTheStyle) {
  LightsModel model;
  model.setStyle(TwoLights());
  const std::string before = Json(model.style());
  Steps steps(model);
  model.change(MovedBy(model, 12, -7), "Move Light");
  EXPECT_NE(Json(model.style()), before);
  model.change(MovedBy(model, -12, 7), "Move Light");
  EXPECT_EQ(Json(model.style()), before);
  model.mirror();
  EXPECT_EQ(model.figure(0).center.x, 40);
  EXPECT_EQ(model.figure(0).handle1.x, -30);
  model.mirror();
  EXPECT_EQ(Json(model.style()), before);
  model.solo();
  EXPECT_EQ(model.light(1).on, 0);
  model.solo();
  EXPECT_EQ(Json(model.style()), before);
  model.moveTo(0, 1);
  EXPECT_EQ(model.selected(), 1) << "the selection goes along";
  EXPECT_EQ(model.light(0).type, LM_STYLE_OMNI);
  model.moveTo(1, 0);
  EXPECT_EQ(Json(model.style()), before);
  ASSERT_TRUE(model.duplicate());
  EXPECT_EQ(model.selected(), 2);
  model.remove();
  model.select(0);
  EXPECT_EQ(Json(model.style()), before);
  EXPECT_EQ(steps.names, (QStringList{"Move Light", "Move Light", "Mirror Light", "Mirror Light",
                                      "Solo Light", "Solo Light", "Order of Lights",
                                      "Order of Lights", "Copy Light", "Delete Light"}));
  model.change([](LM_style&) {}, "Nothing");
  EXPECT_EQ(steps.names.size(), 10) << "what changes nothing is no step";
}

TEST(Lights, WhatIsTriedIsKeptOnceOrGivenUp) {
  LightsModel model;
  model.setStyle(TwoLights());
  const std::string before = Json(model.style());
  Steps steps(model);
  QSignalSpy tried(&model, &LightsModel::tried);
  for (int i = 0; i < 5; ++i)
    model.tryEdit(MovedBy(model, 1, 0));
  EXPECT_EQ(tried.count(), 5);
  model.giveUp();
  EXPECT_EQ(Json(model.style()), before);
  EXPECT_TRUE(steps.names.isEmpty());
  for (int i = 0; i < 5; ++i)
    model.changeSoon(MovedBy(model, 1, 0), "Move Light");
  model.changeSoon([](LM_style& style) { style.gloss = 7; }, "Gloss");
  EXPECT_EQ(steps.names, QStringList{"Move Light"}) << "another step ends the one before";
  model.flush();
  EXPECT_EQ(steps.names, (QStringList{"Move Light", "Gloss"}));
  EXPECT_EQ(steps.last.gloss, 7);
  EXPECT_EQ(model.figure(0).center.x, -35);
  model.changeSoon(MovedBy(model, 1, 0), "Move Light");
  ASSERT_TRUE(QTest::qWaitFor([&] { return steps.names.size() == 3; })) << "after a moment";
  // A light that is added and given up leaves the selection where it was.
  ASSERT_TRUE(model.tryAdding(editor::NewLightAt({0, 0})));
  EXPECT_EQ(model.selected(), 2);
  model.giveUp();
  EXPECT_EQ(model.selected(), 0);
  // What undoing brings wins over what is tried.
  model.tryEdit(MovedBy(model, 50, 0));
  model.setStyle(TwoLights());
  EXPECT_FALSE(model.isTrying());
  EXPECT_EQ(Json(model.style()), before);
}

TEST(Lights, SixteenAreTheMostAndOneTheLeast) {
  LightsModel model;
  Steps steps(model);
  model.setStyle(LM_NewStyle());
  EXPECT_EQ(model.selected(), -1);
  model.mirror();
  model.solo();
  model.remove();
  EXPECT_FALSE(model.duplicate());
  for (int i = 0; i < LM_MAX_LIGHTS; ++i)
    EXPECT_TRUE(model.add({static_cast<float>(i), 0}));
  const std::string one = model.json().toStdString();
  EXPECT_FALSE(model.add({0, 0}));
  EXPECT_FALSE(model.duplicate());
  EXPECT_FALSE(model.paste(QString::fromStdString(one)));
  EXPECT_EQ(steps.refusals, 3);
  EXPECT_EQ(model.count(), LM_MAX_LIGHTS);
  EXPECT_EQ(steps.last.numLights, LM_MAX_LIGHTS);
  while (model.count() > 1)
    model.remove();
  model.remove();
  EXPECT_EQ(steps.refusals, 4);
  EXPECT_EQ(model.count(), 1);
  EXPECT_FALSE(model.paste("{}"));
  // Lights of a style that was saved at another size come in this one's.
  LM_style half = TwoLights();
  half.worldUnit = 70;
  ASSERT_TRUE(model.paste(QString::fromStdString(Json(half))));
  EXPECT_EQ(model.count(), 3);
  EXPECT_EQ(model.figure(1).center.x, -80);
}

// A black body's colour goes from orange through white to blue.
TEST(Lights, TemperaturesHaveTheirColours) {
  const auto channel = [](int kelvin, int plane) {
    return editor::ColorOfTemperature(kelvin).component[plane] / 65535.0;
  };
  EXPECT_NEAR(channel(2000, 1), 0.54, 0.03);
  EXPECT_LT(channel(2000, 2), 0.2);
  for (int plane = 0; plane < LM_PLANES; ++plane)
    EXPECT_GT(channel(6500, plane), 0.96) << "white";
  EXPECT_NEAR(channel(10000, 0), 0.79, 0.03);
  for (int kelvin = 2100; kelvin <= 10000; kelvin += 100) {
    EXPECT_GE(channel(kelvin, 2), channel(kelvin - 100, 2));
    EXPECT_LE(channel(kelvin, 0), channel(kelvin - 100, 0));
    EXPECT_EQ(editor::NearestTemperature(editor::ColorOfTemperature(kelvin)), kelvin);
  }
}

namespace {

class LightsRun : public EditorRun {
protected:
  void SetUp() override {
    open(makePicture("picture.png"));
    window->canvas().setZoom(4);
    window->canvas().setFocus();
    model().setStyle(TwoLights());
    steps = std::make_unique<Steps>(model());
  }
  LightsModel& model() { return window->lights(); }
  QWidget* view() { return window->canvas().viewport(); }
  QPoint handle(int light, int code) {
    return window->lightOverlay().placeOf(light, code).toPoint();
  }
  // Presses, drags in two steps and leaves the button down.
  void drag(QPoint from, QPoint to, Qt::KeyboardModifiers keys = {}) {
    QTest::mousePress(view(), Qt::LeftButton, keys, from);
    moveTo((from + to) / 2, keys);
    moveTo(to, keys);
    _last = to;
  }
  void moveTo(QPoint to, Qt::KeyboardModifiers keys) {
    QMouseEvent event(QEvent::MouseMove, to, view()->mapToGlobal(to), Qt::NoButton, Qt::LeftButton,
                      keys);
    QCoreApplication::sendEvent(view(), &event);
  }
  void drop(Qt::KeyboardModifiers keys = {}) {
    QTest::mouseRelease(view(), Qt::LeftButton, keys, _last);
  }

  std::unique_ptr<Steps> steps;

private:
  QPoint _last;
};

} // namespace

TEST_F(LightsRun, TheMouseMovesShapesCopiesAndAdds) {
  const std::string before = Json(model().style());
  const QPoint away(37, 21);
  drag(handle(0, LM_HANDLE_CENTER), handle(0, LM_HANDLE_CENTER) + away);
  EXPECT_TRUE(model().isTrying());
  QTest::keyClick(&window->canvas(), Qt::Key_Escape);
  drop();
  EXPECT_EQ(Json(model().style()), before) << "Esc gives it up";
  EXPECT_TRUE(steps->names.isEmpty());

  const QPoint start = handle(0, LM_HANDLE_CENTER);
  drag(start, start + away);
  drop();
  EXPECT_LE((handle(0, LM_HANDLE_CENTER) - start - away).manhattanLength(), 4);
  drag(handle(0, LM_HANDLE_CENTER), handle(0, LM_HANDLE_CENTER) + away, Qt::AltModifier);
  drop(Qt::AltModifier);
  EXPECT_EQ(model().count(), 3);
  EXPECT_EQ(model().selected(), 2);

  // The omni, once selected, by its radius; then a spot's axis with a key that goes down on the
  // way.
  QTest::mouseClick(view(), Qt::LeftButton, {}, handle(1, LM_HANDLE_CENTER));
  EXPECT_EQ(model().selected(), 1);
  drag(handle(1, LM_HANDLE_FIRST_END), handle(1, LM_HANDLE_FIRST_END) + QPoint(40, 3));
  drop();
  EXPECT_GT(model().figure(1).radius, 33);
  QTest::mouseClick(view(), Qt::LeftButton, {}, handle(2, LM_HANDLE_CENTER));
  const LM_light_figure spot = model().figure(2);
  drag(handle(2, LM_HANDLE_FIRST_END), handle(2, LM_HANDLE_CENTER) + QPoint(100, -60));
  EXPECT_LT(model().figure(2).handle1.y, 0);
  QTest::keyPress(&window->canvas(), Qt::Key_Shift);
  EXPECT_NEAR(model().figure(2).handle1.x, model().figure(2).handle1.y, 1);
  drop(Qt::ShiftModifier);
  EXPECT_GT(std::fabs(model().figure(2).handle1.x - spot.handle1.x), 1);

  const QPoint lamp = window->lightOverlay().lamp().center().toPoint();
  drag(lamp, QPoint(200, 150));
  drop();
  EXPECT_EQ(model().count(), 4);
  EXPECT_LE((handle(3, LM_HANDLE_CENTER) - QPoint(200, 150)).manhattanLength(), 4);
  drag(lamp, QPoint(200, 150));
  moveTo(lamp, {});
  QTest::mouseRelease(view(), Qt::LeftButton, {}, lamp);
  EXPECT_EQ(model().count(), 4) << "back at the lamp it is put away";
  QTest::mouseDClick(view(), Qt::LeftButton, {}, QPoint(60, 250));
  EXPECT_EQ(model().count(), 5);
  EXPECT_EQ(steps->names, (QStringList{"Move Light", "Copy Light", "Shape Light", "Shape Light",
                                       "Add Light", "Add Light"}));
}

TEST_F(LightsRun, KeysChooseMoveAndDelete) {
  editor::Canvas& canvas = window->canvas();
  QTest::keyClick(&canvas, Qt::Key_Tab);
  EXPECT_EQ(model().selected(), 1);
  QTest::keyClick(&canvas, Qt::Key_Backtab);
  EXPECT_EQ(model().selected(), 0);
  for (int i = 0; i < 3; ++i)
    QTest::keyClick(&canvas, Qt::Key_Right);
  QTest::keyClick(&canvas, Qt::Key_Up, Qt::ShiftModifier);
  EXPECT_EQ(model().figure(0).center.x, -37);
  EXPECT_EQ(model().figure(0).center.y, 0);
  QTest::keyClick(&canvas, Qt::Key_Delete);
  EXPECT_EQ(model().count(), 1);
  EXPECT_EQ(steps->names, (QStringList{"Move Light", "Delete Light"}))
      << "keys in a row are a step";
  // With another tool the lights are out of the way.
  canvas.setTool(editor::Tool::Brush);
  QTest::keyClick(&canvas, Qt::Key_Right);
  EXPECT_FALSE(model().isTrying());
}

TEST_F(LightsRun, ThePanelsControlsEditAndHaveNames) {
  editor::LightPanel& panel = window->lightPanel();
  panel.show();
  int named = 0;
  for (QWidget* control : panel.findChildren<QWidget*>()) {
    const bool isControl = qobject_cast<QSlider*>(control) || qobject_cast<QSpinBox*>(control) ||
                           qobject_cast<QComboBox*>(control) ||
                           qobject_cast<QToolButton*>(control) || qobject_cast<QCheckBox*>(control);
    if (!isControl || !control->isVisible())
      continue;
    ++named;
    QAccessibleInterface* face = QAccessible::queryAccessibleInterface(control);
    ASSERT_NE(face, nullptr);
    EXPECT_FALSE(face->text(QAccessible::Name).isEmpty()) << control->metaObject()->className();
    EXPECT_FALSE(control->toolTip().isEmpty()) << face->text(QAccessible::Name).toStdString();
  }
  EXPECT_GT(named, 40);
  EXPECT_FALSE(panel.list().accessibleName().isEmpty());

  const auto part = [&]<typename Part>(Part*, const QString& name) {
    for (Part* each : panel.findChildren<Part*>())
      if (each->accessibleName() == name)
        return each;
    return static_cast<Part*>(nullptr);
  };
  QSlider* gloss = part(static_cast<QSlider*>(nullptr), "Gloss");
  QSpinBox* number = part(static_cast<QSpinBox*>(nullptr), "Gloss");
  ASSERT_TRUE(gloss != nullptr && number != nullptr);
  number->setFocus();
  number->selectAll();
  QTest::keyClicks(number, "200");
  QTest::keyClick(number, Qt::Key_Return);
  EXPECT_EQ(gloss->value(), 200);
  EXPECT_EQ(model().style().gloss, 200);
  QWheelEvent wheel(QPointF(5, 5), gloss->mapToGlobal(QPointF(5, 5)), {}, {0, 120}, {}, {},
                    Qt::NoScrollPhase, false);
  QCoreApplication::sendEvent(gloss, &wheel);
  model().flush();
  EXPECT_GT(steps->last.gloss, 200);
  QTest::mouseDClick(gloss, Qt::LeftButton);
  model().flush();
  EXPECT_EQ(steps->last.gloss, LM_NewStyle().gloss) << "back at its usual value";
  panel.list().item(1)->setCheckState(Qt::Unchecked);
  EXPECT_EQ(steps->last.lights[1].on, 0);
}
