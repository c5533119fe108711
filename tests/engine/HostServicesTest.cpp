// What the engine asks of the host beside tiles.
#include "LM_host_services.h"
#include "LM_tiles.h"
#include "MacMemory.h"

#include <cstring>
#include <gtest/gtest.h>

namespace {

// What the host answers next, and what it was asked.
int16_t answer = 0;
int nameLength = -1; // -1: no handle
uint32_t askedKey = 0;
int32_t askedIndex = 0;

int16_t Query(uint32_t signature, uint32_t key, int32_t index, int32_t* simpleValue,
              CVHandle* handle) {
  EXPECT_EQ(signature, CV_HOST_SIGNATURE);
  askedKey = key;
  askedIndex = index;
  *simpleValue = 5;
  if (nameLength >= 0) {
    *handle = NewHandle(nameLength);
    std::memset(**handle, 'x', static_cast<size_t>(nameLength));
  }
  return answer;
}

} // namespace

TEST(HostServices, ChannelsAndTheirNames) {
  const uint64_t blocks = TB_BlocksInUse();
  FilterRecord record{};
  int16_t count = 7;
  EXPECT_EQ(LM_GetNumChannels(count, &record), CV_RESULT_NO_SERVICE);
  EXPECT_EQ(count, 7);
  Str255 name = {};
  EXPECT_EQ(LM_GetChannelName(3, name, &record), CV_RESULT_NO_SERVICE);
  record.queryProperty = Query;
  EXPECT_EQ(LM_GetNumChannels(count, &record), 0);
  EXPECT_EQ(count, 5);
  EXPECT_EQ(askedKey, 0x6E756368U); // "nuch"
  const struct {
    int length;
    int16_t answer, result;
    int shown;
  } cases[] = {{4, 0, 0, 4},      {0, 0, 0, 0},      {255, 0, 0, 255},
               {256, 0, 0, 255},  {3000, 0, 0, 255}, {-1, 0, CV_RESULT_NO_SERVICE, -1},
               {-1, -43, -43, -1}};
  for (const auto& each : cases) {
    SCOPED_TRACE(each.length);
    nameLength = each.length;
    answer = each.answer;
    EXPECT_EQ(LM_GetChannelName(3, name, &record), each.result);
    EXPECT_EQ(askedKey, 0x6E6D6368U); // "nmch"
    EXPECT_EQ(askedIndex, 3);
    if (each.shown >= 0) {
      EXPECT_EQ(name[0], each.shown);
      EXPECT_EQ(each.shown == 0 || name[each.shown] == 'x', true);
    }
  }
  EXPECT_EQ(TB_BlocksInUse(), blocks); // every name's handle was disposed of
}

// A whole column or band is counted once more.
TEST(HostServices, ProgressTotal) {
  const struct {
    int16_t height, width;
    int expected;
  } cases[] = {{64, 64, 4}, {1, 65, 2}, {1, 1, 1}, {0, 0, 1}, {32767, 32767, 262144}};
  for (const auto& each : cases) {
    FilterRecord record{};
    record.filterArea = {0, 0, each.height, each.width};
    EXPECT_EQ(LM_NumTilesNeeded(&record), each.expected) << each.width << " x " << each.height;
  }
}
