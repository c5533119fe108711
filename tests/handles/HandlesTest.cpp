// Drags on the whole grid against the rules in whole numbers; on fractions, the laws they keep to.
#include "LM_arithmetic.h"
#include "LM_handles.h"
#include "LM_handles_c.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <random>

namespace {

constexpr auto WHOLE = LM_handle_grid::Whole;
constexpr auto FRACTIONS = LM_handle_grid::Fractions;
constexpr LM_drag_constraint CONSTRAINTS[] = {
    LM_drag_constraint::None, LM_drag_constraint::KeepDirection, LM_drag_constraint::KeepLength};

// The rules of a drag in 16-bit components, each rounding where it happens.
namespace plain {

struct Vector {
  int16_t h, v;
};

float Magnitude(Vector a) {
  const float x = a.h;
  const float y = a.v;
  return static_cast<float>(std::sqrt(static_cast<double>(x * x + y * y)));
}
int16_t Round(float factor, int16_t component, bool up) {
  const double product = static_cast<double>(factor * static_cast<float>(component));
  return LM_Cut16(LM_Truncate(up ? product + 0.5 : product - 0.5));
}
int16_t Truncate16(float value) {
  return LM_Saturate16(LM_Truncate(value));
}
Vector Between(Vector from, Vector to) {
  return {LM_Saturate16(to.h - from.h), LM_Saturate16(to.v - from.v)};
}

Vector Constrained(Vector offset, Vector start, LM_drag_constraint constraint) {
  const float length = Magnitude(offset);
  const float startLength = Magnitude(start);
  if (constraint == LM_drag_constraint::KeepDirection) {
    const float ratio = length / startLength;
    return {Truncate16(static_cast<float>(start.h) * ratio),
            Truncate16(static_cast<float>(start.v) * ratio)};
  }
  const auto component = [&](int16_t value) {
    const int32_t product = LM_Truncate(static_cast<float>(value) * startLength);
    return Truncate16(static_cast<float>(product) / length);
  };
  return constraint == LM_drag_constraint::None ? offset
                                                : Vector{component(offset.h), component(offset.v)};
}

struct Light {
  int32_t type;
  Vector center, handle1, handle2;
  int16_t radius;
};

void Reshape(Light& light, int code, Vector mouse, LM_drag_constraint constraint) {
  const Vector to = Between(light.center, mouse);
  const Vector back = Between(mouse, light.center);
  if (light.type == LM_LIGHT_DIRECTIONAL) {
    light.handle1 = Constrained(to, light.handle1, constraint);
  } else if (light.type == LM_LIGHT_OMNI) {
    const int16_t radii[] = {back.h, back.v, to.h, to.v};
    if (code >= 2 && code <= 5)
      light.radius = radii[code - 2];
    light.radius = std::max<int16_t>(light.radius, 1);
  } else if (light.type == LM_LIGHT_SPOT && (code == 2 || code == 4)) {
    light.handle1 = Constrained(code == 2 ? back : to, light.handle1, constraint);
    float k = Magnitude(light.handle2) / Magnitude(light.handle1);
    if (k >= 1.0F)
      k = 1.0F;
    light.handle2 = {Round(-k, light.handle1.v, light.handle1.v < 0),
                     Round(k, light.handle1.h, light.handle1.h >= 0)};
  } else if (light.type == LM_LIGHT_SPOT && (code == 3 || code == 5)) {
    light.handle2 = Constrained(code == 3 ? back : to, light.handle2, constraint);
    if (light.handle2.h == 0 && light.handle2.v == 0)
      return;
    float k = Magnitude(light.handle1) / Magnitude(light.handle2);
    if (k < 1.0F)
      k = 1.0F;
    light.handle1 = {Round(k, light.handle2.v, light.handle2.v >= 0),
                     Round(-k, light.handle2.h, light.handle2.h < 0)};
  }
}

} // namespace plain

class Dice {
public:
  int operator()(int low, int high) {
    return std::uniform_int_distribution<int>(low, high)(_engine);
  }
  // Most are a dialog's; some lie anywhere in 16 bits, at their ends or at nothing.
  int16_t Length() {
    const int reach = (*this)(0, 9);
    const int ends[] = {INT16_MIN, INT16_MAX, 0, -1};
    return static_cast<int16_t>(reach == 0   ? ends[(*this)(0, 3)]
                                : reach == 1 ? (*this)(INT16_MIN, INT16_MAX)
                                : reach < 4  ? (*this)(-4, 4)
                                             : (*this)(-200, 200));
  }
  plain::Vector Vector() { return {Length(), Length()}; }
  float Fraction() { return std::uniform_real_distribution<float>(-150, 150)(_engine); }
  LM_vector2f Fractions() { return {Fraction(), Fraction()}; }

private:
  std::mt19937 _engine{20261122};
};

LM_vector2f Floats(plain::Vector vector) {
  return {static_cast<float>(vector.h), static_cast<float>(vector.v)};
}

LM_light_figure Figure(const plain::Light& light) {
  LM_light_figure figure = {};
  figure.type = light.type;
  figure.center = Floats(light.center);
  figure.handle1 = Floats(light.handle1);
  figure.handle2 = Floats(light.handle2);
  figure.radius = light.radius;
  return figure;
}

void ExpectSame(const LM_light_figure& a, const LM_light_figure& b, const std::string& where) {
  const float first[] = {a.center.x,  a.center.y,  a.handle1.x, a.handle1.y,
                         a.handle2.x, a.handle2.y, a.radius};
  const float second[] = {b.center.x,  b.center.y,  b.handle1.x, b.handle1.y,
                          b.handle2.x, b.handle2.y, b.radius};
  for (size_t i = 0; i < std::size(first); ++i)
    ASSERT_EQ(first[i], second[i]) << where << ", length " << i;
}

TEST(Handles, WholeDragsAreThoseInWholeNumbers) {
  Dice dice;
  for (int run = 0; run < 100000; ++run) {
    plain::Light light = {dice(-1, 3), dice.Vector(), dice.Vector(), dice.Vector(), dice.Length()};
    const LM_light_figure start = Figure(light);
    const int code = dice(0, 6);
    const plain::Vector mouse = dice.Vector();
    const LM_drag_constraint constraint = CONSTRAINTS[dice(0, 2)];
    const LM_light_figure figure = LM_ReshapeLight(start, code, Floats(mouse), constraint, WHOLE);
    plain::Reshape(light, code, mouse, constraint);
    ASSERT_NO_FATAL_FAILURE(ExpectSame(figure, Figure(light), "run " + std::to_string(run)));
  }
}

TEST(Handles, FractionsKeepWhatTheKeysAskFor) {
  Dice dice;
  const auto dot = [](LM_vector2f a, LM_vector2f b) { return a.x * b.x + a.y * b.y; };
  for (int run = 0; run < 2000; ++run) {
    LM_light_figure start = {};
    start.type = dice(0, 2);
    start.center = dice.Fractions();
    start.handle1 = dice.Fractions();
    start.handle2 = LM_SecondAxis(start.handle1, dice.Fractions(), FRACTIONS);
    start.radius = std::fabs(dice.Fraction());
    const LM_vector2f mouse = dice.Fractions();
    const int code = dice(LM_HANDLE_FIRST_BACK, LM_HANDLE_SECOND_END);
    const bool second = start.type == LM_LIGHT_SPOT &&
                        (code == LM_HANDLE_SECOND_BACK || code == LM_HANDLE_SECOND_END);
    for (LM_drag_constraint constraint : CONSTRAINTS) {
      const LM_light_figure end = LM_ReshapeLight(start, code, mouse, constraint, FRACTIONS);
      const LM_vector2f was = second ? start.handle2 : start.handle1;
      const LM_vector2f is = second ? end.handle2 : end.handle1;
      if (start.type == LM_LIGHT_OMNI) {
        EXPECT_GE(end.radius, 1.0F);
        continue;
      }
      const float product = LM_Length(was) * LM_Length(is);
      if (constraint == LM_drag_constraint::KeepDirection) {
        EXPECT_NEAR(dot(was, is), product, 1e-4F * product);
      } else if (constraint == LM_drag_constraint::KeepLength) {
        EXPECT_NEAR(LM_Length(is), LM_Length(was), 1e-4F * LM_Length(was));
      }
      if (start.type == LM_LIGHT_SPOT) {
        EXPECT_NEAR(dot(end.handle1, end.handle2), 0,
                    1e-4F * LM_Length(end.handle1) * LM_Length(end.handle2));
        EXPECT_GE(LM_Length(end.handle1) * 1.0001F, LM_Length(end.handle2));
      }
      // The handle is under the mouse that drags it.
      if (constraint != LM_drag_constraint::None)
        continue;
      const LM_grab_handles grab = LM_GrabHandlesOf(end, FRACTIONS);
      const int dragged = start.type == LM_LIGHT_DIRECTIONAL ? LM_HANDLE_FIRST_BACK : code;
      for (int i = 0; i < grab.count; ++i)
        if (grab.handles[i].code == dragged) {
          EXPECT_NEAR(grab.handles[i].place.x, mouse.x, 1e-4F);
          EXPECT_NEAR(grab.handles[i].place.y, mouse.y, 1e-4F);
        }
    }
  }
}

// Settings may hold any length, and a mouse may lie anywhere.
TEST(Handles, FractionsStayFinite) {
  const float odd[] = {0.0F, -0.0F, 1e-30F, 40000.0F, 3e38F, INFINITY, -INFINITY, NAN};
  for (float a : odd)
    for (float b : odd)
      for (int type = 0; type <= 2; ++type)
        for (int code = 2; code <= 5; ++code)
          for (LM_drag_constraint constraint : CONSTRAINTS) {
            LM_light_figure start = {};
            start.type = type;
            start.handle1 = {a, b};
            start.handle2 = {b, a};
            start.radius = a;
            const auto end = LM_ReshapeLight(start, code, {b, 7.0F}, constraint, FRACTIONS);
            const LM_vector2f& changed = code == 2 || code == 4 ? end.handle1 : end.handle2;
            const float length = type == LM_LIGHT_OMNI          ? end.radius
                                 : type == LM_LIGHT_DIRECTIONAL ? LM_Length(end.handle1)
                                                                : LM_Length(changed);
            EXPECT_LT(length, 50000.0F) << a << " " << b << " type " << type << " code " << code;
          }
}

TEST(Handles, TheNearestIsHitTheSelectedLightFirst) {
  LM_light_figure figures[3] = {};
  figures[0].type = LM_LIGHT_DIRECTIONAL;
  figures[0].center = {10.5F, 10};
  figures[0].handle1 = {20, 0};
  figures[1].type = LM_LIGHT_OMNI;
  figures[1].radius = 4;
  figures[2].type = LM_LIGHT_SPOT;
  figures[2].center = {10, 10};
  struct Case {
    const char* name;
    int selected;
    LM_vector2f point;
    float reach;
    int light, code;
  };
  const Case cases[] = {
      {"the nearer centre", -1, {10.4F, 10}, 5, 0, LM_HANDLE_CENTER},
      {"the other one", -1, {10.1F, 10}, 5, 2, LM_HANDLE_CENTER},
      {"the selected one, although it is farther", 1, {7, 8.5F}, 12, 1, LM_HANDLE_SECOND_END},
      {"its centre among its handles", 1, {0.5F, 0.5F}, 12, 1, LM_HANDLE_CENTER},
      {"at the very end of the reach", 1, {9, 0}, 5, 1, LM_HANDLE_FIRST_END},
      {"beyond it", 1, {0, 10}, 5.5F, -1, LM_HANDLE_NONE},
      {"a grab handle of a light that is not selected", 1, {30.5F, 10}, 5, -1, LM_HANDLE_NONE},
      {"and of one that is", 0, {30.5F, 10}, 5, 0, LM_HANDLE_FIRST_BACK},
      {"a spot without axes", 2, {10, 10}, 5, 2, LM_HANDLE_FIRST_BACK},
  };
  for (const Case& test : cases) {
    const LM_light_hit hit = LM_NearestHandle(figures, 3, test.selected, test.point, test.reach);
    EXPECT_EQ(hit.light, test.light) << test.name;
    EXPECT_EQ(hit.code, test.code) << test.name;
  }
}

TEST(Handles, ArraysOfFloatsAreTheSameFigures) {
  Dice dice;
  for (int run = 0; run < 200; ++run) {
    const plain::Light light = {dice(0, 2), dice.Vector(), dice.Vector(), dice.Vector(), 9};
    const LM_light_figure start = Figure(light);
    float values[LM_FIGURE_FLOATS] = {static_cast<float>(start.type),
                                      start.center.x,
                                      start.center.y,
                                      start.handle1.x,
                                      start.handle1.y,
                                      start.handle2.x,
                                      start.handle2.y,
                                      start.radius};
    float handles[LM_FIGURE_HANDLES * LM_HANDLE_FLOATS];
    const int count = LM_figure_handles(values, handles);
    ASSERT_EQ(count, LM_GrabHandlesOf(start, FRACTIONS).count + 1);
    EXPECT_EQ(handles[LM_HANDLE_FLOATS * (count - 1)], LM_HANDLE_CENTER);
    // Each is hit where it is.
    for (int i = 0; i < count; ++i) {
      const float* handle = handles + LM_HANDLE_FLOATS * i;
      const int hit = LM_figures_hit(values, 1, 0, handle[1], handle[2], 0.5F);
      EXPECT_GT(hit, 0);
      EXPECT_LE(hit, 5);
    }
    const int code = dice(LM_HANDLE_CENTER, LM_HANDLE_SECOND_END);
    const int constraint = dice(0, 2);
    LM_figure_drag(values, code, 12.5F, -3, constraint);
    LM_light_figure end = start;
    if (code == LM_HANDLE_CENTER)
      end.center = {12.5F, -3};
    else
      end = LM_ReshapeLight(start, code, {12.5F, -3}, CONSTRAINTS[constraint], FRACTIONS);
    const float expected[] = {end.center.x,  end.center.y,  end.handle1.x, end.handle1.y,
                              end.handle2.x, end.handle2.y, end.radius};
    for (size_t i = 0; i < std::size(expected); ++i)
      ASSERT_EQ(values[i + 1], expected[i]) << "run " << run << ", code " << code;
  }
}

} // namespace
