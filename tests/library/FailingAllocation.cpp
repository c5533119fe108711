#include "FailingAllocation.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<int> allocationsLeft = -1;

void* Allocate(size_t size) {
  if (allocationsLeft >= 0 && allocationsLeft-- == 0)
    return nullptr;
  return std::malloc(size > 0 ? size : 1);
}

} // namespace

void FailAllocationAfter(int count) {
  allocationsLeft = count;
}

// A program's operators stand in for those of all its libraries.
void* operator new(size_t size, const std::nothrow_t&) noexcept {
  return Allocate(size);
}
void* operator new(size_t size) {
  if (void* block = Allocate(size))
    return block;
  throw std::bad_alloc();
}
void operator delete(void* block) noexcept {
  std::free(block);
}
void operator delete(void* block, size_t) noexcept {
  std::free(block);
}
