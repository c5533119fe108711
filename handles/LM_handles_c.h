/* The handles of lights for callers that have arrays of floats: fractions, as LM_handles.h has
   them. C as well as C++; cannot fail, allocates nothing. */
#pragma once

#ifdef __cplusplus
extern "C" {
#endif

/* A figure: LM_light_type, center x and y, handle1 x and y, handle2 x and y, radius. */
#define LM_FIGURE_FLOATS 8
/* A handle: LM_handle_code, x, y. The centre is the last one. */
#define LM_HANDLE_FLOATS 3
#define LM_FIGURE_HANDLES 5

/* Writes the handles of a selected light and answers how many there are. */
int LM_figure_handles(const float* figure, float* handles);

/* The handle nearest to a point, at most `reach` away, as 8 * light + code; 0 for none. figures:
   one after the other. selected: -1 for none. */
int LM_figures_hit(const float* figures, int count, int selected, float x, float y, float reach);

/* Makes of `figure`, as it was when the drag began, the one with that handle at the point; the
   centre takes the light along. constraint: 1 keeps the direction, 2 the length, 0 neither. */
void LM_figure_drag(float* figure, int code, float x, float y, int constraint);

/* After a change of type or handles: a spot's second axis as it has to be. */
void LM_figure_validate(float* figure);

#ifdef __cplusplus
}
#endif
