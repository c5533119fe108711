#include "MacMemory.h"

#include "TB_FreeMemory.h"
#include "TB_Locked.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <mutex>
#include <optional>

namespace {

using Clock = std::chrono::steady_clock;

// Asking the system costs some ten microseconds, so an answer serves for a while, a shorter one
// where a wrong answer would hurt. Our own blocks are counted exactly in between.
constexpr auto SMALL_BLOCK_AGE = std::chrono::milliseconds(100);
constexpr auto QUERY_AGE = std::chrono::milliseconds(20);
constexpr auto LARGE_BLOCK_AGE = std::chrono::milliseconds(2);
constexpr Size LARGE_BLOCK = 1 << 20;

constexpr size_t SMALL_ALIGNMENT = 16;
constexpr size_t PAGE_ALIGNMENT = 64;
constexpr Size PAGE_BLOCK = 4096;
// Sizes up to this one can be rounded and added to without overflow.
constexpr Size LARGEST_SIZE = PTRDIFF_MAX - 65536;

// Stands right before a block's bytes.
struct BlockHeader {
  Size size;
  size_t offset; // from the allocation to the block's bytes
};
static_assert(sizeof(BlockHeader) <= SMALL_ALIGNMENT);

// What a handle points to. The master pointer comes first, so the two addresses are the same.
struct HandleRecord {
  Ptr master;
  bool locked;
  bool purgeable;
  HandleRecord* previous; // in the list of purgeable blocks
  HandleRecord* next;
};

struct State {
  std::mutex mutex;
  std::optional<uint64_t> budget;
  uint64_t inUse = 0;
  uint64_t blocks = 0;
  uint64_t purgeableBytes = 0;
  HandleRecord* firstPurgeable = nullptr;
  // From the last question to the system: how far inUse may grow.
  uint64_t systemLimit = 0;
  std::optional<Clock::time_point> asked;
  std::optional<std::vector<TB_ControlGroup>> groups;
};

BlockHeader* HeaderOf(Ptr block) {
  return reinterpret_cast<BlockHeader*>(block - sizeof(BlockHeader));
}

HandleRecord* RecordOf(Handle handle) {
  return reinterpret_cast<HandleRecord*>(handle);
}

void AskSystem(State* state) {
  uint64_t available = UINT64_MAX;
  uint64_t resident = UINT64_MAX;
  try {
    if (!state->groups)
      state->groups = TB_FindControlGroups("");
    available = TB_FreeMemory("", *state->groups);
    resident = TB_ResidentMemory();
  } catch (const std::exception&) {
    // Not even a path could be built: nothing is left, as far as can be told.
    available = 0;
  }
  // Blocks that were handed out but not yet written to still look free to the system.
  uint64_t promised = state->inUse > resident ? state->inUse - resident : 0;
  uint64_t left = available > promised ? available - promised : 0;
  state->systemLimit = std::min(left, UINT64_MAX - state->inUse) + state->inUse;
}

// Bytes that may be handed out now. The lock is held.
uint64_t FreeBytes(State* state, Clock::duration maximumAge) {
  if (!state->budget) {
    const Clock::time_point now = Clock::now();
    if (!state->asked || now - *state->asked > maximumAge) {
      AskSystem(state);
      state->asked = now;
    }
  }
  uint64_t limit = state->budget.value_or(state->systemLimit);
  return limit > state->inUse ? limit - state->inUse : 0;
}

Size AsSize(uint64_t bytes) {
  return static_cast<Size>(std::min<uint64_t>(bytes, static_cast<uint64_t>(LARGEST_SIZE)));
}

void ReleaseBytes(State* state, Ptr block) {
  BlockHeader header = *HeaderOf(block);
  state->inUse -= static_cast<uint64_t>(header.size);
  free(block - header.offset);
}

// A block that is not locked and has bytes to lose stands in the list while purgeable.
bool Listed(const HandleRecord& record) {
  return record.purgeable && !record.locked && record.master && HeaderOf(record.master)->size > 0;
}

void AddToList(State* state, HandleRecord* record) {
  record->previous = nullptr;
  record->next = state->firstPurgeable;
  if (record->next)
    record->next->previous = record;
  state->firstPurgeable = record;
  state->purgeableBytes += static_cast<uint64_t>(HeaderOf(record->master)->size);
}

void RemoveFromList(State* state, HandleRecord* record) {
  (record->previous ? record->previous->next : state->firstPurgeable) = record->next;
  if (record->next)
    record->next->previous = record->previous;
  state->purgeableBytes -= static_cast<uint64_t>(HeaderOf(record->master)->size);
}

void Purge(State* state, uint64_t wanted, Clock::duration maximumAge) {
  while (state->firstPurgeable && FreeBytes(state, maximumAge) < wanted) {
    HandleRecord* record = state->firstPurgeable;
    RemoveFromList(state, record);
    ReleaseBytes(state, record->master);
    record->master = nullptr;
  }
}

// Takes `size` bytes from the budget, purging when there are not enough.
bool Reserve(State* state, Size size) {
  if (size < 0 || size > LARGEST_SIZE)
    return false;
  const Clock::duration age = size >= LARGE_BLOCK ? LARGE_BLOCK_AGE : SMALL_BLOCK_AGE;
  const auto wanted = static_cast<uint64_t>(size);
  Purge(state, wanted, age);
  if (FreeBytes(state, age) < wanted)
    return false;
  state->inUse += wanted;
  return true;
}

// A block's bytes, after their header, charged to the budget but not yet counted as a block.
Ptr NewBytes(Size size) {
  {
    const TB_Locked<State> state;
    if (!Reserve(state, size))
      return nullptr;
  }
  const size_t offset = size >= PAGE_BLOCK ? PAGE_ALIGNMENT : SMALL_ALIGNMENT;
  void* memory = nullptr;
  // A block of no bytes lies in its allocation too, not where another may begin.
  const size_t room = std::max<size_t>(static_cast<size_t>(size), 1);
  if (posix_memalign(&memory, offset, offset + room) != 0) {
    const TB_Locked<State> state;
    state->inUse -= static_cast<uint64_t>(size);
    return nullptr;
  }
  Ptr block = static_cast<Ptr>(memory) + offset;
  *HeaderOf(block) = {size, offset};
  return block;
}

void SetFlag(Handle handle, bool HandleRecord::*flag, bool value) {
  if (!handle)
    return;
  const TB_Locked<State> state;
  HandleRecord* record = RecordOf(handle);
  if (Listed(*record))
    RemoveFromList(state, record);
  record->*flag = value;
  if (Listed(*record))
    AddToList(state, record);
}

} // namespace

Ptr NewPtr(Size size) {
  Ptr block = NewBytes(size);
  if (block) {
    const TB_Locked<State> state;
    ++state->blocks;
  }
  return block;
}

Ptr NewPtrClear(Size size) {
  Ptr block = NewPtr(size);
  if (block)
    memset(block, 0, static_cast<size_t>(size));
  return block;
}

void DisposePtr(Ptr block) {
  if (block) {
    const TB_Locked<State> state;
    ReleaseBytes(state, block);
    --state->blocks;
  }
}

Handle NewHandle(Size size) {
  Ptr bytes = NewBytes(size);
  if (!bytes)
    return nullptr;
  auto* record = static_cast<HandleRecord*>(malloc(sizeof(HandleRecord)));
  const TB_Locked<State> state;
  if (!record) {
    ReleaseBytes(state, bytes);
    return nullptr;
  }
  *record = {bytes, false, false, nullptr, nullptr};
  ++state->blocks;
  return &record->master;
}

void DisposeHandle(Handle handle) {
  if (!handle)
    return;
  const TB_Locked<State> state;
  HandleRecord* record = RecordOf(handle);
  if (Listed(*record))
    RemoveFromList(state, record);
  if (record->master)
    ReleaseBytes(state, record->master);
  --state->blocks;
  free(record);
}

Size GetHandleSize(Handle handle) {
  const TB_Locked<State> state; // another thread's request may purge the block
  return handle && *handle ? HeaderOf(*handle)->size : 0;
}

void HLock(Handle handle) {
  SetFlag(handle, &HandleRecord::locked, true);
}
void HUnlock(Handle handle) {
  SetFlag(handle, &HandleRecord::locked, false);
}
void HPurge(Handle handle) {
  SetFlag(handle, &HandleRecord::purgeable, true);
}
void HNoPurge(Handle handle) {
  SetFlag(handle, &HandleRecord::purgeable, false);
}

Size MaxBlock() {
  const TB_Locked<State> state;
  return AsSize(FreeBytes(state, QUERY_AGE));
}

void PurgeMem(Size size) {
  const TB_Locked<State> state;
  Purge(state, static_cast<uint64_t>(std::max<Size>(size, 0)), QUERY_AGE);
}

Size MaxMem(Size* grow) {
  if (grow)
    *grow = 0;
  const TB_Locked<State> state;
  Purge(state, UINT64_MAX, QUERY_AGE);
  return AsSize(FreeBytes(state, QUERY_AGE));
}

void PurgeSpace(Size* total, Size* contiguous) {
  const TB_Locked<State> state;
  const uint64_t bytes = FreeBytes(state, QUERY_AGE);
  const uint64_t all = bytes + std::min(state->purgeableBytes, UINT64_MAX - bytes);
  if (total)
    *total = AsSize(all);
  if (contiguous)
    *contiguous = AsSize(all);
}

void TB_SetMemoryBudget(uint64_t bytes) {
  const TB_Locked<State> state;
  state->budget = bytes;
}

void TB_ResetMemoryBudget() {
  const TB_Locked<State> state;
  state->budget.reset();
  state->asked.reset();
}

uint64_t TB_MemoryInUse() {
  const TB_Locked<State> state;
  return state->inUse;
}

uint64_t TB_BlocksInUse() {
  const TB_Locked<State> state;
  return state->blocks;
}
