#include "LM_kept_sums.h"

#include <algorithm>
#include <cmath>
#include <new>

#include "LM_height_rows.h"
#include "LM_light_sums.h"

namespace {

// Squared lengths between which |L| and its inverse go together.
constexpr double LEAST_SQUARE = 0x1p-90;
constexpr double MOST_SQUARE = 0x1p90;
constexpr double ALLOWANCE = 1.0 + 0x1p-12;

double Square(float value) {
  return static_cast<double>(value) * static_cast<double>(value);
}

// The greatest distance along one axis; subtraction keeps the samples' order.
double SquaredWay(float from, float first, float last) {
  return std::max(Square(from - first), Square(from - last));
}

// The most that a light's specular sum is of its diffuse one; infinite where it cannot be told.
double MostHeight(const LM_kernel_light& light, bool directional, bool relief,
                  const LM_extent& extent) {
  const double height = Square(light.z);
  double way = Square(light.x) + Square(light.y);
  if (directional && !(way + height >= LEAST_SQUARE))
    return INFINITY;
  if (!directional)
    way = SquaredWay(light.x, extent.left, extent.right) +
          SquaredWay(light.y, extent.top, extent.bottom);
  return way + height <= MOST_SQUARE ? std::sqrt(relief ? way + height : height) : INFINITY;
}

// Rows end with whole vectors.
size_t KeptWidth(const LM_rect& rect) {
  return (static_cast<size_t>(rect.right - rect.left) + LM_KERNEL_SLACK - 1) / LM_KERNEL_SLACK *
         LM_KERNEL_SLACK;
}
size_t HeightOf(const LM_rect& rect) {
  return static_cast<size_t>(rect.bottom - rect.top);
}
size_t KeptFlags(const LM_rect& rect) {
  const int blocks = (rect.right - rect.left + LM_RENDER_BLOCK - 1) / LM_RENDER_BLOCK;
  return static_cast<size_t>(blocks) * HeightOf(rect);
}

// Words in a row: the sums of all its samples, then their tails.
size_t RowWords(const LM_rect& rect, int facets, const LM_kept_form& form) {
  const size_t samples = KeptWidth(rect) * static_cast<size_t>(facets);
  if (!form.isTight)
    return samples * LM_KEPT_SUMS;
  const size_t words = samples * static_cast<size_t>(form.planes);
  return words + words / sizeof(int32_t);
}

} // namespace

LM_kept_form LM_TightForm(const foo& params, const LM_rect& area, bool relief) {
  const LM_sample_grid grid(area, &params);
  const LM_extent extent = {grid.X(area.left), grid.X(area.right - 1), grid.Y(area.top),
                            grid.Y(area.bottom - 1)};
  const LM_sorted_lights lights = LM_SortLights(params, !relief);
  const LM_kernel_lights& sorted = lights.kernel;
  const int local = sorted.omnis + sorted.spots;
  double diffuse = 0.0;
  double specular = 0.0;
  bool gray = true;
  for (int k = 0; k < sorted.Count(); ++k) {
    const LM_kernel_light& light = sorted.light[k];
    const double most = static_cast<double>(light.strongest) * ALLOWANCE;
    diffuse += most;
    specular += most * MostHeight(light, k >= local, relief, extent);
    gray = gray && light.gray;
  }
  // Of 24 bits with the sign; NaN is not below it either.
  constexpr double LIMIT = 0x1p23 - 1.0;
  if (!(diffuse <= LIMIT && specular <= LIMIT))
    return {};
  return {gray ? 1 : LM_PLANES, true};
}

LM_kept_run LM_kept_sums::At(int32_t column, int32_t row) const {
  LM_kept_run run = {sums.get() + static_cast<size_t>(row) * RowWords(rect, facets, form), nullptr,
                     form.planes};
  if (form.isTight)
    run.tails = reinterpret_cast<int8_t*>(
        run.words + KeptWidth(rect) * static_cast<size_t>(facets * form.planes));
  return run.From(ptrdiff_t{column} * facets);
}

uint64_t LM_KeptBytes(const LM_rect& rect, bool relief, uint32_t lights, const LM_kept_form& form) {
  const int facets = relief ? LM_FACETS : 1;
  const uint64_t sums = lights == LM_ALL_LIGHTS ? uint64_t{RowWords(rect, facets, form)} *
                                                      HeightOf(rect) * sizeof(int32_t)
                                                : LM_packed_sums::Bytes(rect, facets);
  return sums + KeptFlags(rect);
}

bool LM_StartKeeping(const LM_rect& rect, bool relief, uint32_t lights, LM_kept_sums& kept,
                     const LM_kept_form& form) {
  kept = {};
  if (LM_KeptBytes(rect, relief, lights, form) > PTRDIFF_MAX)
    return false;
  LM_kept_sums room = {relief ? LM_FACETS : 1, rect, lights, form, nullptr, {}, nullptr};
  room.ready.reset(new (std::nothrow) uint8_t[KeptFlags(rect)]());
  if (lights == LM_ALL_LIGHTS)
    room.sums.reset(new (std::nothrow) int32_t[RowWords(rect, room.facets, form) * HeightOf(rect)]);
  else
    room.packed.Start(rect, room.facets);
  if (room.IsEmpty() || (room.sums == nullptr && room.packed.IsEmpty()))
    return false;
  kept = std::move(room);
  return true;
}
