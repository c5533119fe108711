// All kernels, once for each instruction set, and the choice among them.
#include "LM_kernels.h"

#include <algorithm>
#include <iterator>

// The third set is for processors without a fused multiply-add. An older one is not worth its code.
#define HWY_DISABLED_TARGETS (HWY_SSSE3 | HWY_AVX3_DL)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/LM_kernels.cpp"
#include "hwy/foreach_target.h"
#include "hwy/highway.h"

// Emulated vectors, and those without doubles, are slower than the plain code; for WebAssembly the
// doubles are our own. Vectors whose length is not known here cannot be kept in structures.
#undef LM_TARGET_HAS_KERNELS
#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128 ||                                        \
    (!HWY_HAVE_FLOAT64 && HWY_TARGET != HWY_WASM) || HWY_HAVE_SCALABLE
#define LM_TARGET_HAS_KERNELS 0
#else
#define LM_TARGET_HAS_KERNELS 1
#include "LM_deep_kernel-inl.h"
#include "LM_deep_rows-inl.h"
#include "LM_facet_kernel-inl.h"
#include "LM_flat_kernel-inl.h"
#if !HWY_ARCH_WASM
#include "LM_kept_kernel-inl.h"
#include "LM_packed_kernel-inl.h"
#endif
#include "LM_pixel_kernels-inl.h"
#include "LM_relief_kernel-inl.h"
#include "LM_sum_kernel-inl.h"
#include "LM_vector_math-inl.h"
#endif

HWY_BEFORE_NAMESPACE();
namespace {
namespace HWY_NAMESPACE {

#if LM_TARGET_HAS_KERNELS
#if HWY_ARCH_WASM
// Nothing is kept there, and everybody loads the module.
constexpr decltype(LM_kernels::keep) KeepSums = nullptr;
constexpr decltype(LM_kernels::combine) CombineKept = nullptr;
constexpr decltype(LM_kernels::pack) KeepPacked = nullptr;
constexpr decltype(LM_kernels::over) LightOver = nullptr;
#endif
const LM_kernels* TargetKernels() {
  static const LM_kernels kernels = {hwy::TargetName(HWY_TARGET),
                                     SplitPlanes,
                                     JoinPlanes,
                                     LightFlat,
                                     FilterHeights,
                                     FilterWordHeights,
                                     MakeNormals,
                                     LightRelief,
                                     LoadDeep,
                                     StoreDeep,
                                     LightDeep,
                                     KeepSums,
                                     CombineKept,
                                     KeepPacked,
                                     LightOver,
                                     SumLights,
                                     ReciprocalRoots};
  return &kernels;
}
#else
const LM_kernels* TargetKernels() {
  return nullptr;
}
#endif

} // namespace HWY_NAMESPACE
} // namespace
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace {

HWY_EXPORT(TargetKernels);

// The entry of one target in the table that the library makes.
const LM_kernels* KernelsOf(int64_t target) {
  const size_t entries = std::size(HWY_DISPATCH_TABLE(TargetKernels));
  const int64_t bit = HWY_CHOSEN_TARGET_SHIFT(target);
  if (bit == 0)
    return nullptr;
  const size_t index =
      entries == 1 ? 0 : hwy::Num0BitsBelowLS1Bit_Nonzero64(static_cast<uint64_t>(bit));
  return HWY_DISPATCH_TABLE(TargetKernels)[index]();
}

} // namespace

int LM_ListKernels(const LM_kernels** list, int room) {
  int count = 0;
  // Better targets have lower bits.
  for (int64_t left = HWY_SUPPORTED_TARGETS & HWY_TARGETS; left != 0 && count < room;
       left &= left - 1) {
    const LM_kernels* kernels = KernelsOf(left & -left);
    if (kernels != nullptr)
      list[count++] = kernels;
  }
  return count;
}

const LM_kernels* LM_BestKernels() {
  // Asking the processor takes longer than lighting a small tile, above all in a virtual machine.
  static const LM_kernels* const kept = [] {
    const LM_kernels* best = nullptr;
    LM_ListKernels(&best, 1);
    return best;
  }();
  return kept;
}
#endif
