#include "bands.h"

#include "guard.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <thread>
#include <vector>

namespace limn {
namespace {

constexpr int MOST_THREADS = 256;

class BandLoop {
public:
  BandLoop(Rows rows, int32_t width, const LightRows& light)
      : _light(light), _rows(rows), _bandRows(std::max(BAND_PIXELS / width, LEAST_BAND_ROWS)),
        _next(rows.first) {}

  int Bands() const { return (_rows.last - _rows.first + _bandRows - 1) / _bandRows; }

  // Lights the next band. False when there is none, or when all shall stop.
  bool LightNext(LM_render_scratch& scratch) {
    if (_stop.load(std::memory_order_relaxed))
      return false;
    const int32_t first = _next.fetch_add(_bandRows, std::memory_order_relaxed);
    if (first >= _rows.last)
      return false;
    const int32_t last = std::min(first + _bandRows, _rows.last);
    _light({first, last}, scratch);
    _done.fetch_add(last - first, std::memory_order_relaxed);
    return true;
  }

  void Stop() { _stop.store(true, std::memory_order_relaxed); }
  double Done() const {
    return static_cast<double>(_done.load(std::memory_order_relaxed)) / (_rows.last - _rows.first);
  }

private:
  const LightRows& _light;
  Rows _rows;
  int32_t _bandRows;
  std::atomic<int32_t> _next;
  std::atomic<int32_t> _done = 0;
  std::atomic<bool> _stop = false;
};

int ThreadsFor(const limn_options& options, int bands) {
  const int wanted =
      options.threads > 0 ? options.threads : static_cast<int>(std::thread::hardware_concurrency());
  return std::clamp(wanted, 1, std::min(bands, MOST_THREADS));
}

bool WantsStop(const limn_options& options, double done) {
  if (options.progress == nullptr)
    return false;
  try {
    return options.progress(done, options.user) != 0;
  } catch (...) {
    throw CallFailure{LIMN_FAILED, "the progress function threw an exception"};
  }
}

void NeedGoing(const limn_options& options, double done) {
  if (WantsStop(options, done))
    throw CallFailure{LIMN_CANCELLED, "the lighting was cancelled"};
}

} // namespace

void LightInBands(Rows rows, int32_t width, const limn_options& options, const LightRows& light) {
  BandLoop loop(rows, width, light);
  std::vector<LM_render_scratch_pointer> scratch;
  for (int i = ThreadsFor(options, loop.Bands()); i > 0; --i) {
    scratch.push_back(LM_NewRenderScratch());
    if (scratch.back() == nullptr)
      throw std::bad_alloc();
  }
  NeedGoing(options, 0);
  std::vector<std::jthread> others; // which are waited for, however the scope is left
  try {
    for (size_t i = 1; i < scratch.size(); ++i)
      others.emplace_back([&loop, &own = *scratch[i]] {
        while (loop.LightNext(own)) {
        }
      });
  } catch (const std::exception&) {
    // The system grants no more threads or memory. Fewer do the work.
  }
  try {
    while (loop.LightNext(*scratch[0]))
      if (loop.Done() < 1)
        NeedGoing(options, loop.Done());
  } catch (...) {
    loop.Stop();
    throw;
  }
  others.clear();
  WantsStop(options, 1); // too late to stop
}

} // namespace limn
