#include "FailingBlocks.h"

#include <cerrno>
#include <cstdlib>

namespace {

uint64_t left = 0;

} // namespace

void FailAllocationAfter(uint64_t n) {
  left = n;
}

// What the linker calls in place of posix_memalign, and what it calls that by itself.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" int __real_posix_memalign(void** block, size_t alignment, size_t size);
extern "C" int __wrap_posix_memalign(void** block, size_t alignment, size_t size) {
  return left > 0 && --left == 0 ? ENOMEM : __real_posix_memalign(block, alignment, size);
}
// NOLINTEND(bugprone-reserved-identifier)
