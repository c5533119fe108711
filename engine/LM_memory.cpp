#include "LM_memory.h"

#include <limits>

#include "MacMemory.h"

void* LM_NewPtr(size_t size) {
  if (size > static_cast<size_t>(std::numeric_limits<Size>::max()))
    return nullptr;
  const Size wanted = static_cast<Size>(size);
  if (MaxBlock() < wanted) {
    PurgeMem(wanted);
    if (MaxBlock() < wanted) {
      Size grow = 0;
      if (MaxMem(&grow) < wanted)
        return nullptr;
    }
  }
  Size total = 0;
  Size contiguous = 0;
  PurgeSpace(&total, &contiguous);
  if (total < wanted || total - wanted <= static_cast<Size>(LM_MEMORY_RESERVE))
    return nullptr;
  return NewPtr(wanted);
}

void LM_DisposePtr(void* block) {
  if (block != nullptr)
    DisposePtr(static_cast<Ptr>(block));
}
