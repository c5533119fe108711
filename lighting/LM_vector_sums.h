// Sums of light for samples that are kept, by vectors: the preview's rows.
#pragma once

#include "LM_kernel_lights.h"

// The lights of one parameter block, made ready for one pass over its samples.
class LM_vector_sums {
public:
  // sorted: the block's, for a flat surface when the samples have no normals. kernels: null when
  // there are none; every row is refused then. All outlive it.
  LM_vector_sums(const foo* params, const LM_sorted_lights& sorted, const LM_kernels* kernels)
      : _params(params), _sorted(sorted), _kernels(kernels) {}

  // Fills the sums of n > 0 samples of one row, ordered by x, as LM_SumLights does with the plain
  // shader, byte for byte, through the caches of the block's lights. False when vectors cannot do
  // that; nothing is changed then.
  bool Sum(int n, const LM_vector2f* positions, const LM_vector3f* normals, LM_color96* diffuse,
           LM_color96* specular) const;

private:
  struct ColdLights;
  bool _FindCold(const LM_extent& extent, ColdLights& cold) const;
  const foo* _params;
  const LM_sorted_lights& _sorted;
  const LM_kernels* _kernels;
};
