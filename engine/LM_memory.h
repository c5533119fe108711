// The one allocator of large blocks.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>

// Bytes that must be exceeded by what stays free after every block: the host's own needs.
constexpr uint32_t LM_MEMORY_RESERVE = 16383;

// Returns a block of `size` bytes, content undefined, aligned for any of the engine's types, or
// null when it cannot be had or when it would leave LM_MEMORY_RESERVE bytes or less free. Owned by
// the caller; released with LM_DisposePtr.
void* LM_NewPtr(size_t size);

// Releases a block of LM_NewPtr; null is ignored.
void LM_DisposePtr(void* block);

// Releases the block that `pointer` holds, if any, and clears it.
template <class T> void LM_DisposeAndClear(T*& pointer) {
  LM_DisposePtr(std::exchange(pointer, nullptr));
}
