// Blocks, handles and the budget they share.
#include "MacMemory.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>

class MemoryTest : public testing::Test {
protected:
  void SetUp() override { inUse = TB_MemoryInUse(); }
  void TearDown() override {
    TB_ResetMemoryBudget();
    EXPECT_EQ(TB_MemoryInUse(), inUse);
    EXPECT_EQ(TB_BlocksInUse(), blocks);
  }
  // Lets `bytes` more be had.
  void Allow(uint64_t bytes) const { TB_SetMemoryBudget(TB_MemoryInUse() + bytes); }
  static Size TotalFree() {
    Size total = -1;
    PurgeSpace(&total, nullptr);
    return total;
  }
  uint64_t inUse = 0;
  uint64_t blocks = TB_BlocksInUse();
};

TEST_F(MemoryTest, TheBudgetIsExact) {
  Allow(100000);
  EXPECT_EQ(MaxBlock(), 100000);
  EXPECT_EQ(TotalFree(), 100000);
  EXPECT_EQ(NewPtr(100001), nullptr);
  Ptr block = NewPtr(60000);
  ASSERT_NE(block, nullptr);
  EXPECT_EQ(TotalFree(), 40000);
  EXPECT_EQ(TB_MemoryInUse() - inUse, 60000U);
  Handle handle = NewHandle(40000);
  ASSERT_NE(handle, nullptr);
  EXPECT_EQ(MaxMem(nullptr), 0);
  EXPECT_EQ(NewPtr(1), nullptr);
  TB_SetMemoryBudget(0);
  EXPECT_EQ(MaxBlock(), 0) << "more in use than the budget allows";
  DisposePtr(block);
  DisposeHandle(handle);
}

TEST_F(MemoryTest, SizesThatCannotBe) {
  TB_SetMemoryBudget(UINT64_MAX);
  for (Size size : {Size{-1}, Size{INT32_MIN}, PTRDIFF_MIN, PTRDIFF_MAX, PTRDIFF_MAX - 64}) {
    EXPECT_EQ(NewPtr(size), nullptr) << size;
    EXPECT_EQ(NewPtrClear(size), nullptr) << size;
    EXPECT_EQ(NewHandle(size), nullptr) << size;
  }
}

TEST_F(MemoryTest, BlocksAreAlignedSizedAndCleared) {
  for (Size size : {0, 1, 15, 4095, 4096, 100000}) {
    Ptr block = NewPtrClear(size);
    Handle handle = NewHandle(size);
    ASSERT_TRUE(block && handle && *handle) << size;
    const uintptr_t alignment = size >= 4096 ? 64 : 16;
    EXPECT_EQ(reinterpret_cast<uintptr_t>(block) % alignment, 0U) << size;
    EXPECT_EQ(reinterpret_cast<uintptr_t>(*handle) % alignment, 0U) << size;
    EXPECT_EQ(GetHandleSize(handle), size);
    EXPECT_EQ(std::count(block, block + size, 0), size);
    memset(block, 1, static_cast<size_t>(size));
    memset(*handle, 1, static_cast<size_t>(size));
    DisposePtr(block);
    DisposeHandle(handle);
  }
  DisposePtr(nullptr);
  DisposeHandle(nullptr);
  EXPECT_EQ(GetHandleSize(nullptr), 0);
}

TEST_F(MemoryTest, OnlyPurgeableUnlockedBlocksAreGivenUp) {
  Allow(40000);
  Handle kept = NewHandle(10000);
  Handle locked = NewHandle(10000);
  Handle purgeable = NewHandle(10000);
  Handle empty = NewHandle(0);
  HPurge(empty);
  HPurge(locked);
  HPurge(purgeable);
  HLock(locked);
  EXPECT_EQ(MaxBlock(), 10000);
  EXPECT_EQ(TotalFree(), 20000);
  EXPECT_NE(*purgeable, nullptr) << "asking purges nothing";
  PurgeMem(10000);
  EXPECT_NE(*purgeable, nullptr) << "there was enough";
  Ptr block = NewPtr(15000);
  EXPECT_NE(block, nullptr);
  EXPECT_EQ(*purgeable, nullptr);
  EXPECT_EQ(GetHandleSize(purgeable), 0);
  EXPECT_TRUE(*kept && *locked);
  EXPECT_EQ(TotalFree(), 5000) << "what is left";

  HUnlock(locked);
  HNoPurge(locked);
  EXPECT_EQ(MaxMem(nullptr), 5000);
  EXPECT_NE(*locked, nullptr);
  EXPECT_NE(*empty, nullptr) << "it has nothing to give";
  HPurge(locked);
  PurgeMem(15000);
  EXPECT_EQ(*locked, nullptr);
  DisposePtr(block);
  for (Handle handle : {kept, locked, purgeable, empty}) {
    DisposeHandle(handle);
  }
}
