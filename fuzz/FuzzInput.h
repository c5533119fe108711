// What every fuzzer shares: the entry point, its bytes taken as values, and the way to fail.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

// Runs one input. Defined by each fuzzer; called by the fuzzing engine, or by replay.cpp.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

// The values that an input is read as, one after the other; zeros once it is used up.
class FuzzInput {
public:
  FuzzInput(const uint8_t* data, size_t size) : _next(data), _left(size) {}

  bool Empty() const { return _left == 0; }
  uint8_t Byte() {
    if (_left == 0)
      return 0;
    --_left;
    return *_next++;
  }
  int16_t Short() {
    const int high = Byte();
    return static_cast<int16_t>(static_cast<uint16_t>(high << 8 | Byte()));
  }
  // 0 to n - 1, for an n of at most 256.
  int Below(int n) { return Byte() % n; }
  // A small number around 0, or now and then any number at all.
  int16_t Number() {
    const uint8_t kind = Byte();
    return kind % 8 == 0 ? Short() : static_cast<int16_t>(static_cast<int8_t>(Byte()));
  }

private:
  const uint8_t* _next;
  size_t _left;
};

// Ends the program, which the fuzzing engine takes as a finding, when `holds` is false.
inline void Check(bool holds, const char* law) {
  if (holds)
    return;
  std::fprintf(stderr, "does not hold: %s\n", law);
  std::abort();
}
