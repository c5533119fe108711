// The vector kernels' reciprocal root against the expression that defines it, for every mantissa.
#include "LM_kernels.h"
#include "RenderRun.h"

#include <cmath>
#include <gtest/gtest.h>

namespace {

constexpr int RUN = 1 << 14;

// A number with that exponent and fraction.
float Number(int exponent, uint32_t fraction) {
  return std::ldexp(1.0F + static_cast<float>(fraction) * 0x1p-23F, exponent);
}

// Both arrays with the slack that kernels may touch.
struct Roots {
  std::vector<float> values = std::vector<float>(RUN + LM_KERNEL_SLACK, 1.0F);
  std::vector<float> roots = std::vector<float>(RUN + LM_KERNEL_SLACK);
  std::vector<float> expected = std::vector<float>(RUN);
};

// Every `step`-th fraction of the numbers with that exponent.
void Fill(Roots& run, int exponent, uint32_t first, uint32_t step) {
  for (uint32_t i = 0; i < RUN; ++i) {
    run.values[i] = Number(exponent, first + i * step);
    run.expected[i] = static_cast<float>(1.0 / std::sqrt(static_cast<double>(run.values[i])));
  }
}

void ExpectExact(Roots& run, float nudge) {
  for (const LM_kernels* kernels : AllKernels()) {
    if (kernels == nullptr)
      continue;
    kernels->reciprocalRoot(run.values.data(), RUN, nudge, run.roots.data());
    for (int i = 0; i < RUN; ++i) {
      const auto at = static_cast<size_t>(i);
      ASSERT_EQ(run.roots[at], run.expected[at])
          << kernels->name << ", value " << run.values[at] << ", nudge " << nudge;
    }
  }
}

} // namespace

// Two binades: the root of a number four times as large has the same digits.
// An estimate may be wrong by 1.5 * 2^-12 and differs from maker to maker, so each is also tried
// when it is worse than the best by that much, and a little more, either way.
TEST(ReciprocalRoot, ExactForEveryMantissa) {
  if (LM_BestKernels() == nullptr)
    GTEST_SKIP() << "no vector kernels here";
  Roots run;
  for (int exponent = 0; exponent < 2 && !testing::Test::HasFailure(); ++exponent) {
    for (uint32_t first = 0; first < (1U << 23) && !testing::Test::HasFailure(); first += RUN) {
      Fill(run, exponent, first, 1);
      for (const float nudge : {1.0F, 1.0F + 0x1p-12F, 1.0F - 0x1p-12F})
        ExpectExact(run, nudge);
    }
  }
}

// The smallest and largest numbers that kernels are given, where products could leave the range.
TEST(ReciprocalRoot, ExactOverTheWholeRange) {
  Roots run;
  for (int exponent = -96; exponent < 96 && !testing::Test::HasFailure(); ++exponent) {
    Fill(run, exponent, 1, 509);
    ExpectExact(run, 1.0F);
  }
  run.values[0] = 0x1p96F;
  run.expected[0] = 0x1p-48F;
  ExpectExact(run, 1.0F);
}
