#include "MemoryWatch.h"

#include <cstdio>
#include <malloc.h>
#include <unistd.h>

namespace {

// A round that leaked a single block of the smallest size would pass the first after some thousand
// rounds. The second is what an allocator may keep in pieces.
constexpr int64_t MOST_ALLOCATED = 64;
constexpr int64_t MOST_RESIDENT = 4096;

} // namespace

MemoryState MemoryNow() {
  malloc_trim(0);
  const struct mallinfo2 info = mallinfo2();
  long pages = 0;
  if (FILE* file = std::fopen("/proc/self/statm", "r")) {
    if (std::fscanf(file, "%*d %ld", &pages) != 1)
      pages = 0;
    std::fclose(file);
  }
  return {static_cast<int64_t>((info.uordblks + info.hblkhd) / 1024),
          static_cast<int64_t>(pages) * (sysconf(_SC_PAGESIZE) / 1024)};
}

void MemoryWatch::Round() {
  if (++_rounds == _warm)
    _start = MemoryNow();
}

bool MemoryWatch::Report(const char* what) const {
  const MemoryState end = MemoryNow();
  const int64_t allocated = end.allocated - _start.allocated;
  const int64_t resident = end.resident - _start.resident;
  std::printf("counted: %s %d, memory grew by %lld KB (resident %lld KB)\n", what, _rounds,
              static_cast<long long>(allocated), static_cast<long long>(resident));
  return _rounds > _warm && allocated <= MOST_ALLOCATED && resident <= MOST_RESIDENT;
}
