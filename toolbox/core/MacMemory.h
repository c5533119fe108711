// The Memory Manager: fixed blocks and relocatable ones over the general allocator, within a
// budget.
//
// The budget is what a host or a test set, else what the machine and its control group have free.
// Only requested bytes count against it, no overhead of the allocator. Calls are safe on any
// thread; one block belongs to one thread at a time. A failing call answers null.
#pragma once

#include "MacTypes.h"

// A new block of `size` bytes, aligned to 16 bytes, to 64 from a page upwards. The content is
// undefined (NewPtr) or zero (NewPtrClear). The caller owns it. Null when the size is negative,
// over the budget or not to be had.
TB_EXPORT Ptr NewPtr(Size size);
TB_EXPORT Ptr NewPtrClear(Size size);
// Releases a block of NewPtr; null is ignored.
TB_EXPORT void DisposePtr(Ptr block);

// The three that the contract with hosts declares too, as C; here they are exported.
// NOLINTBEGIN(readability-redundant-declaration)
extern "C" {
// A new relocatable block, its content undefined. The caller owns it. Null as for NewPtr.
TB_EXPORT Handle NewHandle(Size size);
// Releases a block of NewHandle; null is ignored.
TB_EXPORT void DisposeHandle(Handle handle);
// The block's size; 0 for null and for a purged block.
TB_EXPORT Size GetHandleSize(Handle handle);
}
// NOLINTEND(readability-redundant-declaration)

// A locked block is not purged.
TB_EXPORT void HLock(Handle handle);
TB_EXPORT void HUnlock(Handle handle);
// A purgeable, unlocked block may lose its content when memory is short: its master pointer becomes
// null while the handle stays valid. New blocks are not purgeable, and one of no bytes has nothing
// to lose.
TB_EXPORT void HPurge(Handle handle);
TB_EXPORT void HNoPurge(Handle handle);

// Bytes of the largest block that can be had now, without purging.
TB_EXPORT Size MaxBlock();
// Purges until `size` bytes can be had at once or nothing purgeable is left.
TB_EXPORT void PurgeMem(Size size);
// Purges everything purgeable and answers the largest block to be had then. *grow becomes how far
// the heap could grow beyond that: always 0, since the allocator grows by itself. May be null.
TB_EXPORT Size MaxMem(Size* grow);
// What would be free, in all and in one piece, if everything purgeable were purged. Purges nothing.
TB_EXPORT void PurgeSpace(Size* total, Size* contiguous);

// --- For hosts and tests ---

// The most bytes that all blocks may take together from now on, those in use included.
TB_EXPORT void TB_SetMemoryBudget(uint64_t bytes);
// Back to what the machine and its control group have free.
TB_EXPORT void TB_ResetMemoryBudget();
// Bytes requested in all blocks now alive, and the number of those blocks. A handle counts as one.
TB_EXPORT uint64_t TB_MemoryInUse();
TB_EXPORT uint64_t TB_BlocksInUse();
