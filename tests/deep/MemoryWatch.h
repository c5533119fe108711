// Whether a loop's memory grows for ever.
#pragma once

#include <cstdint>

// Kilobytes in use: what the allocator has handed out, and what the process has of the machine.
struct MemoryState {
  int64_t allocated, resident;
};
MemoryState MemoryNow();

// Called after every round; the first ones fill caches and count as the start.
class MemoryWatch {
public:
  // rounds: how many there will be.
  explicit MemoryWatch(int rounds) : _warm(rounds < 400 ? rounds / 4 : 100) {}
  void Round();
  // Prints "counted: WHAT n, memory grew by ... KB"; false when that is more than noise.
  bool Report(const char* what) const;

private:
  int _warm;
  int _rounds = 0;
  MemoryState _start{};
};
