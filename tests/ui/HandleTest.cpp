// Where the handles of lights are drawn, and which of them a click hits.
#include "LightDialog.h"

#include "LM_light_UI_mac.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace {

constexpr uint32_t GREY = RGB(128, 128, 128);
constexpr short SIDE = 200;

// A port of its own, on a ground of one colour.
class Handles : public testing::Test {
protected:
  void UsePort(short depth, uint16_t ground) {
    const Rect bounds = {0, 0, SIDE, SIDE};
    port = NewOffscreenPort(bounds);
    ASSERT_NE(port, nullptr);
    (**port->portPixMap).pixelSize = depth;
    SetPort(port);
    const RGBColor color = {ground, ground, ground};
    const LM_color_pattern pattern(color);
    FillCRect(&bounds, pattern.handle);
  }
  void SetUp() override {
    UsePort(32, 0);
    globals.GenerateEllipseCoords();
    globals.frameOriginX = 10;
    globals.frameOriginY = 20;
    globals.previewMaps[LM_FRAME_MAP].bounds = {0, 0, 150, 140};
    light().color = {{0xFFFF, 0x8000, 0}};
    light().anchor = {100, 100};
    light().center = {0, -10}; // drawn at (100, 90)
    light().handle1 = {30, 16};
    light().handle2 = {-8, 15};
    light().radius = 25;
  }
  void TearDown() override { DisposePort(port); }
  LM_light_UI& light() { return globals.lights[0]; }

  GrafPtr port = nullptr;
  LM_globals globals;
};

struct Grab {
  const char* name;
  LM_light_type type;
  short h, v; // where it is drawn
};
const Grab GRABS[] = {
    {"directional end", LM_LIGHT_DIRECTIONAL, 130, 106},
    {"omni left", LM_LIGHT_OMNI, 75, 90},
    {"omni top", LM_LIGHT_OMNI, 100, 65},
    {"omni right, a pixel inside", LM_LIGHT_OMNI, 124, 90},
    {"omni bottom, a pixel inside", LM_LIGHT_OMNI, 100, 114},
    {"spot -handle1", LM_LIGHT_SPOT, 70, 74},
    {"spot -handle2", LM_LIGHT_SPOT, 108, 75},
    {"spot +handle1", LM_LIGHT_SPOT, 130, 106},
    {"spot +handle2", LM_LIGHT_SPOT, 92, 105},
};

// The handle under a point by the Toolbox's own regions: what is drawn there is what is hit.
short HitByRegions(const LM_light_UI& light, Point point, bool active) {
  RgnHandle region = NewRgn();
  const auto holds = [&](void (*frame)(const Rect*), const Rect& box) {
    OpenRgn();
    frame(&box);
    CloseRgn(region);
    return PtInRgn(point, region) != 0;
  };
  const LM_light_figure figure = LM_ScreenFigure(light);
  const LM_grab_handles grab = LM_GrabHandlesOf(figure, LM_handle_grid::Whole);
  short code = LM_HANDLE_NONE;
  for (int i = active ? 0 : grab.count; i < grab.count && code == LM_HANDLE_NONE; ++i)
    if (holds(FrameRect, LM_GrabHandleBox(LM_PointOf(grab.handles[i].place))))
      code = grab.handles[i].code;
  if (code == LM_HANDLE_NONE && holds(FrameOval, LM_CenterHandleBox(LM_PointOf(figure.center))))
    code = LM_HANDLE_CENTER;
  DisposeRgn(region);
  return code;
}

// Every pixel round a handle, in the middle of the plane and at its ends, where boxes are cut; and
// handles that lie on each other.
TEST_F(Handles, AreHitWhereTheyCoverThePicture) {
  light().anchor = {0, 0};
  int hits[LM_HANDLE_SECOND_END + 1] = {};
  for (int16_t h : {-32768, -32766, 0, 32764, 32766, 32767}) {
    for (int16_t v : {-32768, -32765, 40, 32765, 32767}) {
      for (int type = LM_LIGHT_OMNI; type <= LM_LIGHT_SPOT + 1; ++type) {
        for (int16_t length : {0, 3, 6}) {
          light().type = type;
          light().center = {h, v};
          light().radius = length;
          light().handle1 = {length, 1};
          light().handle2 = {-1, length};
          for (int dv = -11; dv <= 11; ++dv) {
            for (int dh = -11; dh <= 11; ++dh) {
              const Point point = LM_PlaceAt({v, h}, dh, dv);
              for (LM_bool active : {0, 1}) {
                const short code = light().HitTest(point, active);
                ++hits[code];
                ASSERT_EQ(code, HitByRegions(light(), point, active == 1))
                    << "type " << type << ", light " << h << " " << v << ", length " << length
                    << ", point " << point.h << " " << point.v << ", active " << active;
              }
            }
          }
        }
      }
    }
  }
  for (int count : hits)
    EXPECT_GT(count, 0) << "each code is hit";
}

TEST_F(Handles, ADragIsThatOfTheFigure) {
  light().handle1 = {40, 0};
  light().handle2 = {0, 20};
  LM_vectori2 start1 = {30, 0};
  LM_vectori2 start2 = {0, 12};
  Rect preview = {0, 0, SIDE, SIDE};
  for (int type = LM_LIGHT_OMNI; type <= LM_LIGHT_SPOT; ++type) {
    for (short code = LM_HANDLE_CENTER; code <= LM_HANDLE_SECOND_END; ++code) {
      for (LM_bool keepDirection : {0, 1}) {
        for (LM_bool keepLength : {0, 1}) {
          LM_color96 sums[1];
          LM_light_UI dragged = light();
          dragged.type = type;
          dragged.radius = 0;
          dragged.diffuseCache = sums;
          dragged.diffuseCacheHot = 1;
          LM_light_figure start = LM_ScreenFigure(dragged);
          start.handle1 = start1.Floats();
          start.handle2 = start2.Floats();
          const auto constraint = keepDirection ? LM_drag_constraint::KeepDirection
                                  : keepLength  ? LM_drag_constraint::KeepLength
                                                : LM_drag_constraint::None;
          const LM_light_figure end =
              LM_ReshapeLight(start, code, {107, 115}, constraint, LM_handle_grid::Whole);
          dragged._SetNewHandlePosition(107, 115, &globals, preview, code, start1, start2,
                                        keepDirection, keepLength);
          const bool shaped =
              type == LM_LIGHT_DIRECTIONAL || (type == LM_LIGHT_SPOT && code != LM_HANDLE_CENTER);
          EXPECT_EQ(dragged.handle1, shaped ? LM_WholeVector(end.handle1) : light().handle1);
          EXPECT_EQ(dragged.handle2, shaped && type == LM_LIGHT_SPOT ? LM_WholeVector(end.handle2)
                                                                     : light().handle2);
          EXPECT_EQ(dragged.radius, type == LM_LIGHT_OMNI ? static_cast<int16_t>(end.radius) : 0);
          EXPECT_FALSE(dragged.diffuseCacheHot) << "the caches are stale";
        }
      }
    }
  }
}

TEST_F(Handles, AreDrawnWhereTheTableSays) {
  for (const Grab& grab : GRABS) {
    const Rect all = port->portRect;
    EraseRect(&all);
    light().type = grab.type;
    light().DrawActive(&globals, 1);
    for (int dv = -2; dv <= 2; ++dv) {
      for (int dh = -2; dh <= 2; ++dh)
        ASSERT_EQ(PixelAt(grab.h + dh, grab.v + dv), GREY) << grab.name;
    }
  }
}

TEST_F(Handles, TheCentreIsARoundSevenPixelsWide) {
  light().type = LM_LIGHT_SPOT;
  light().DrawInactive();
  EXPECT_EQ(PixelAt(100, 90), RGB(255, 128, 0));
  const LM_color_pattern grey({32768, 32768, 32768});
  const Rect all = port->portRect;
  FillCRect(&all, grey.handle);
  light().DrawInactive();
  EXPECT_EQ(PixelAt(97, 90), 0U) << "framed in black";
  EXPECT_EQ(PixelAt(103, 90), 0U);
  EXPECT_EQ(PixelAt(96, 90), GREY);
  EXPECT_EQ(PixelAt(104, 90), GREY);
}

TEST_F(Handles, OutlinesBrightenOrInvertByThePortsDepth) {
  light().type = LM_LIGHT_DIRECTIONAL;
  light().handle1 = {60, 0};
  light().DrawActive(&globals, 0);
  EXPECT_EQ(PixelAt(120, 90), GREY) << "grey added to black";
  EXPECT_EQ(PixelAt(160, 90), GREY) << "the end point belongs to the line";
  EXPECT_EQ(PixelAt(161, 90), 0U);
  DisposePort(port);
  UsePort(8, 0);
  light().DrawActive(&globals, 0);
  EXPECT_EQ(PixelAt(120, 90), RGB(127, 127, 127)) << "exclusive-or";
}

TEST_F(Handles, TheEllipseReachesFromAxisToAxis) {
  light().type = LM_LIGHT_SPOT;
  light().handle1 = {50, 0};
  light().handle2 = {0, 20};
  light()._DrawXORActive(0, 0, &globals);
  int left = SIDE, top = SIDE, right = 0, bottom = 0;
  for (int v = 0; v < SIDE; ++v) {
    for (int h = 0; h < SIDE; ++h) {
      if (PixelAt(h, v) == 0)
        continue;
      left = std::min(left, h);
      right = std::max(right, h);
      top = std::min(top, v);
      bottom = std::max(bottom, v);
    }
  }
  // Corners of the polygon are drawn twice, which takes them away again.
  EXPECT_NEAR(left, 50, 1);
  EXPECT_EQ(right, 150);
  EXPECT_NEAR(top, 70, 1);
  EXPECT_NEAR(bottom, 110, 1);
}

TEST_F(Handles, TheSelectedLightIsOnTop) {
  globals.numLights = 3;
  globals.curLight = 0;
  globals.lights[1] = globals.lights[2] = light();
  light().type = LM_LIGHT_OMNI;
  globals.lights[1].color = {{0, 0, 0xFFFF}};
  globals.lights[2].color = {{0, 0xFFFF, 0}};
  globals.DrawLights();
  EXPECT_EQ(PixelAt(100, 90), RGB(255, 128, 0));
  globals.DrawInactiveLights();
  EXPECT_EQ(PixelAt(100, 90), RGB(0, 255, 0)) << "in the order of their numbers";
  globals.numLights = 0;
  globals.DrawLights();
  EXPECT_EQ(PixelAt(100, 90), RGB(255, 128, 0)) << "without lights the current one is drawn";
}

TEST_F(Handles, BoundsHoldTheFigure) {
  const auto bounds = [&](LM_light_type type, LM_vectori2 handle) {
    light().type = type;
    light().handle1 = handle;
    VRect box = {1, 2, 3, 4};
    light()._CalcBounds(box, &globals);
    return std::vector<int32_t>{box.top, box.left, box.bottom, box.right};
  };
  typedef std::vector<int32_t> Sides;
  EXPECT_EQ(bounds(LM_LIGHT_DIRECTIONAL, {30, -16}), (Sides{51, 87, 74, 124}));
  EXPECT_EQ(bounds(LM_LIGHT_DIRECTIONAL, {-30, 16}), (Sides{67, 57, 90, 94}));
  EXPECT_EQ(bounds(LM_LIGHT_OMNI, {0, 0}), (Sides{43, 63, 98, 118}));
  EXPECT_EQ(bounds(LM_LIGHT_SPOT, {0, 0}), (Sides{1, 1, 149, 139}));
  EXPECT_EQ(bounds(static_cast<LM_light_type>(9), {0, 0}), (Sides{1, 2, 3, 4}));
}

// Style files may hold any coordinates.
TEST_F(Handles, ExtremePlacesDrawNothingWrongAndUndoThemselves) {
  const Pixels before = PixelsOf(port->portRect);
  const LM_vectori2 extremes[] = {{32767, 32767}, {-32768, -32768}, {-32768, 32767}, {0, 0}};
  for (int type = -1; type <= 3; ++type) {
    for (const LM_vectori2& place : extremes) {
      for (const LM_vectori2& handle : extremes) {
        light().type = type;
        light().center = place;
        light().handle1 = handle;
        light().handle2 = {handle.v, handle.h};
        light().radius = handle.h;
        light()._DrawXORActive(1, 1, &globals);
        light()._DrawXORActive(1, 1, &globals);
        ASSERT_EQ(PixelsOf(port->portRect), before) << type;
        VRect box;
        light()._CalcBounds(box, &globals);
      }
    }
  }
  light().center = {32767, 32767};
  light().DrawActive(&globals, 1);
}

} // namespace
