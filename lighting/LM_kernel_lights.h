// Lights of a block as the vector kernels read them, and which of them vectors light as the plain
// code does.
#ifndef LM_KERNEL_LIGHTS_H
#define LM_KERNEL_LIGHTS_H

#include "LM_kernels.h"

// The light, not yet in any row.
LM_kernel_light LM_KernelLight(const LM_light& light);

// Puts an omni or a spot into the row of samples at y = place, x from `first` to `last`. False when
// a number could come up there that vectors do not treat as the plain code does: too small, too
// large, or none.
bool LM_MoveToRow(LM_kernel_light& light, float place, float first, float last);
// The same question for a directional light, which no row changes.
bool LM_DirectionFitsVectors(const LM_kernel_light& light);

#endif
