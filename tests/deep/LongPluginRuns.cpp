// usage: long_plugin_runs RUNS
// One session with the plug-in that never ends: flat and with relief, the sizes alternating, every
// seventh run cancelled. Memory must not grow, nor the picture change.
#include "MacMemory.h"
#include "MemoryWatch.h"
#include "ScriptedHost.h"

#include <cstdlib>
#include <gtest/gtest.h>

namespace {

int runs = 0;

// The image's memory is that of the largest; each size sees it in rows of its own.
constexpr CVRect SIZES[] = {{0, 0, 100, 130}, {0, 0, 1, 1}, {0, 0, 40, 129}, {0, 0, 64, 64}};

TEST(LongPluginRuns, MemoryDoesNotGrow) {
  ScriptedHost host(130, 100);
  const LM_style styles[] = {OneLight(false), OneLight(true)};
  std::vector<uint8_t> first[std::size(SIZES) * std::size(styles)];
  uint64_t blocks = 0;
  MemoryWatch watch(runs);
  for (int i = 0; i < runs && !HasFailure(); ++i) {
    const size_t kind = static_cast<size_t>(i) % std::size(first);
    host.record.filterArea = SIZES[kind % std::size(SIZES)];
    host.KeepParameters(styles[kind / std::size(SIZES)]);
    const bool cancelled = i % 7 == 6;
    host.cancelAfter = cancelled ? 0 : -1;
    host.out.assign(host.out.size(), 0);
    const int16_t result = host.Run(); // a picture of one tile is done before anyone can cancel
    ASSERT_TRUE(result == CV_RESULT_OK || (cancelled && result == CV_RESULT_STOPPED))
        << "run " << i;
    host.requests.clear();
    if (i == 0)
      blocks = TB_BlocksInUse();
    ASSERT_EQ(TB_BlocksInUse(), blocks) << "run " << i;
    if (!cancelled && first[kind].empty())
      first[kind] = host.out;
    ASSERT_TRUE(cancelled || host.out == first[kind]) << "run " << i;
    watch.Round();
  }
  EXPECT_TRUE(watch.Report("plug-in runs"));
}

} // namespace

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  runs = argc > 1 ? std::atoi(argv[1]) : 0;
  return RUN_ALL_TESTS();
}
