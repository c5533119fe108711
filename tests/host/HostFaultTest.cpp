// Memory running out at every step of a run, and a host that changes its mind.
#include "MacMemory.h"
#include "ScriptedHost.h"

#include <gtest/gtest.h>

namespace {

TEST(HostFault, MemoryShortAtEachAllocationEndsTheRunAndLeaksNothing) {
  for (const bool relief : {false, true}) {
    std::vector<uint8_t> expected;
    {
      ScriptedHost host(90, 70);
      host.KeepParameters(OneLight(relief));
      ASSERT_EQ(host.Run(), CV_RESULT_OK);
      expected = host.out;
    }
    for (uint64_t n = 1;; ++n) {
      ScriptedHost host(90, 70);
      host.KeepParameters(OneLight(relief));
      const uint64_t blocks = TB_BlocksInUse();
      const uint64_t before = TB_AllocationCount();
      TB_FailAllocationAfter(n);
      const int16_t result = host.Run();
      const bool failed = TB_AllocationCount() - before >= n;
      TB_FailAllocationAfter(0);
      EXPECT_EQ(result, failed ? CV_RESULT_NO_MEMORY : CV_RESULT_OK) << n;
      EXPECT_EQ(TB_BlocksInUse() - blocks, host.data != 0 ? 1U : 0U)
          << "left behind at allocation " << n;
      // The next run does as if nothing had happened.
      EXPECT_EQ(host.Run(), CV_RESULT_OK) << n;
      EXPECT_EQ(host.out, expected) << n;
      if (!failed)
        break;
    }
  }
}

TEST(HostFault, HostThatDeliversOtherRectanglesDoesNoHarm) {
  ScriptedHost host(100, 100);
  host.KeepParameters(OneLight(true));
  ASSERT_EQ(host.Call(CV_SEL_START), CV_RESULT_OK);
  std::vector<uint8_t> pixels(100 * 100 * 4, 9);
  const auto deliver = [&](CVRect rect) {
    host.record.inTileRect = rect;
    host.record.outTileRect = rect;
    host.record.inPixels = pixels.data();
    host.record.outPixels = pixels.data();
    host.record.inRowStride = host.record.outRowStride = 300;
  };
  // A small channel tile, then an image tile that its heights do not cover.
  deliver({0, 0, 8, 8});
  EXPECT_EQ(host.Call(CV_SEL_CONTINUE), CV_RESULT_OK);
  deliver({0, 0, 64, 64});
  EXPECT_EQ(host.Call(CV_SEL_CONTINUE), CV_RESULT_OK);
  EXPECT_EQ(pixels, std::vector<uint8_t>(pixels.size(), 9)) << "shaded without heights";
  // Turned inside out, and with nothing delivered.
  deliver({50, 50, 10, 10});
  EXPECT_EQ(host.Call(CV_SEL_CONTINUE), CV_RESULT_OK);
  host.record.inPixels = nullptr;
  EXPECT_EQ(host.Call(CV_SEL_CONTINUE), CV_RESULT_OK);
}

} // namespace
