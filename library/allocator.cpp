// The engine's large blocks in this library: from the general allocator, since the memory budget of
// a host is none of a library's business and would be state that all its callers share. Standing
// here, the two functions take the place of the engine's own.
#include "LM_memory.h"

#include <new>

void* LM_NewPtr(size_t size) {
  return ::operator new(size, std::nothrow);
}

void LM_DisposePtr(void* block) {
  ::operator delete(block);
}
