// Lets a chosen block of the Memory Manager fail, in programs that link its static library.
#pragma once

#include <cstdint>

// The n-th allocation from now fails once. 1 is the next one; 0 calls the failure off.
void FailAllocationAfter(uint64_t n);
