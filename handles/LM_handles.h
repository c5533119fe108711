// The handles of a light: where they are, which of them lies under a point, and what dragging one
// does. Points in, figures out; who draws and who holds the mouse is not known here.
//
// Lengths are the figure's own, y growing downwards. A light has a handle at its centre; while it
// is selected it has grab handles at the ends of its vectors too.
#pragma once

#include "LM_light_figure.h"

// An omni's first axis is horizontal; a directional light has one grab handle, the first.
enum LM_handle_code : int16_t {
  LM_HANDLE_NONE = 0,
  LM_HANDLE_CENTER = 1,
  LM_HANDLE_FIRST_BACK = 2,  // spot: center - handle1; omni: left; directional: handle1's end
  LM_HANDLE_SECOND_BACK = 3, // spot: center - handle2; omni: top
  LM_HANDLE_FIRST_END = 4,   // spot: center + handle1; omni: right
  LM_HANDLE_SECOND_END = 5   // spot: center + handle2; omni: bottom
};

// What becomes of fractions. Whole: lengths are cut towards zero and kept in 16 bits at each step,
// as on a dialog's pixels; figures and points that go in are whole already. Fractions: they stay.
// What would be beyond 16 bits lies at their end either way, and NaN is 0.
enum class LM_handle_grid { Whole, Fractions };

struct LM_grab_handle {
  LM_handle_code code;
  LM_vector2f place;
};

struct LM_grab_handles {
  int count = 0;
  LM_grab_handle handles[4];
};

// In the order in which they are drawn and tested. endInset: by how much an omni's right and bottom
// handles lie inside its circle.
LM_grab_handles LM_GrabHandlesOf(const LM_light_figure& figure, LM_handle_grid grid,
                                 float endInset = 0);

// The grab handle that covers a pixel, each being a square of 5 pixels: the first of those that
// overlap.
LM_handle_code LM_GrabHandleAtPixel(const LM_light_figure& figure, LM_vector2f pixel);
// Whether the centre does, an oval of 7 pixels.
bool LM_CenterCoversPixel(const LM_light_figure& figure, LM_vector2f pixel);

struct LM_light_hit {
  int light; // -1: none
  LM_handle_code code;
};
// The handle nearest to a point, of those at most `reach` away. All of the selected light's come
// before the centres of the others. selected: -1 for none.
LM_light_hit LM_NearestHandle(const LM_light_figure* figures, int count, int selected,
                              LM_vector2f point, float reach);

// KeepDirection: the dragged vector changes in length alone; KeepLength: in direction alone. An
// omni takes no notice of them.
enum class LM_drag_constraint { None, KeepDirection, KeepLength };

// What a light that looked like `start` when the drag began looks like with the handle at `point`.
// An omni's radius is at least 1. The axes of a spot stay perpendicular, and the first the longer
// one, whichever is dragged. The centre is not moved: a code that is no grab handle changes
// nothing, but for the radius that was below 1 and for a directional light, which has one handle.
LM_light_figure LM_ReshapeLight(const LM_light_figure& start, int code, LM_vector2f point,
                                LM_drag_constraint constraint, LM_handle_grid grid);

// A spot's second axis as it has to be: perpendicular to the first and no longer than it.
LM_vector2f LM_SecondAxis(LM_vector2f first, LM_vector2f second, LM_handle_grid grid);

// The length, squares summed in single precision and the root taken in double.
float LM_Length(LM_vector2f vector);
// The vector turned a quarter, from x towards y, and scaled: (x, y) gives (-y, x), by a negative
// factor (y, -x). On the whole grid each component is rounded to the nearest integer, halves away
// from zero, and its low 16 bits are kept.
LM_vector2f LM_QuarterTurn(LM_vector2f vector, float factor, LM_handle_grid grid);

// A length on its grid.
float LM_OnGrid(float length, LM_handle_grid grid);
