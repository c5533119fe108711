// Work on the rows of a plane, shared between threads.
#pragma once

#include <cstdint>
#include <future>
#include <system_error>

#if defined(__EMSCRIPTEN__) && !defined(__EMSCRIPTEN_PTHREADS__)
constexpr bool LM_HAS_THREADS = false;
#else
constexpr bool LM_HAS_THREADS = true;
#endif

// Calls work(first, end) for rows that together are all of them, on two threads where a plane is
// large and the system grants a second one. What the work throws is thrown.
template <class Work> void LM_WorkInBands(int width, int height, const Work& work) {
  if constexpr (LM_HAS_THREADS) {
    constexpr int64_t WORTHWHILE = 1 << 18; // pixels
    const int half = int64_t{width} * height < WORTHWHILE ? height : height / 2;
    std::future<void> rest;
    try {
      if (half < height)
        rest = std::async(std::launch::async, [&work, half, height] { work(half, height); });
    } catch (const std::system_error&) {
    }
    work(0, rest.valid() ? half : height);
    if (rest.valid())
      rest.get();
  } else {
    work(0, height);
  }
}
