#include "LM_memory.h"
#include "MacMemory.h"

#include <gtest/gtest.h>

TEST(Memory, KeepsTheReserveFree) {
  const uint64_t used = TB_MemoryInUse();
  const size_t size = 5000;
  const struct {
    uint64_t leftFree;
    bool granted;
  } cases[] = {{0, false}, {16382, false}, {16383, false}, {16384, true}, {100000, true}};
  for (const auto& each : cases) {
    SCOPED_TRACE(each.leftFree);
    TB_SetMemoryBudget(used + size + each.leftFree);
    void* block = LM_NewPtr(size);
    EXPECT_EQ(block != nullptr, each.granted);
    LM_DisposePtr(block);
    EXPECT_EQ(TB_MemoryInUse(), used);
  }
  TB_ResetMemoryBudget();
}

TEST(Memory, RefusesWhatNoMachineHas) {
  EXPECT_EQ(LM_NewPtr(SIZE_MAX), nullptr);
  EXPECT_EQ(LM_NewPtr(SIZE_MAX / 2 + 1), nullptr);
  LM_DisposePtr(nullptr);
}
