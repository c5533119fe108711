#include "CVHostProcs.h"

#include "CVFilterRun.h"
#include "CVFilterSession.h"
#include "MacTypes.h"

// Lets `work` use the current run and answers `answer` when there is none or it throws, which ends
// the run.
template <typename Answer, typename Work> static Answer withRun(Answer answer, Work work) noexcept {
  if (CVFilterRun* run = CVFilterRun::current())
    run->fail(CVGuardedRun([&]() -> CVResult {
      answer = work(*run);
      return {};
    }));
  return answer;
}

static uint8_t testCancel() {
  return withRun<uint8_t>(CVFilterRun::current() != nullptr ? 1 : 0,
                          [](CVFilterRun& run) { return run.testCancel() ? 1 : 0; });
}

static void reportProgress(int32_t done, int32_t) {
  withRun(0, [done](CVFilterRun& run) {
    run.reportProgress(done);
    return 0;
  });
}

static int16_t nextTile() {
  return withRun<int16_t>(CV_RESULT_NO_SERVICE, [](CVFilterRun& run) { return run.nextTile(); });
}

static int16_t queryProperty(uint32_t signature, uint32_t key, int32_t index, int32_t* simpleValue,
                             CVHandle* handle) {
  return withRun<int16_t>(CV_RESULT_NO_SERVICE, [&](CVFilterRun& run) {
    return run.queryProperty(signature, key, index, simpleValue, handle);
  });
}

void CVSetHostProcs(FilterRecord& record) {
  record.testCancel = testCancel;
  record.reportProgress = reportProgress;
  record.hostCall = [](int16_t, int32_t*) {}; // no call is known
  record.nextTile = nextTile;
  record.queryProperty = queryProperty;
}

// Only what can be judged without reading the pixels: an order of the sides, and rows that hold the
// width.
int16_t CVCheckPixelMap(const CVPixelMap* map, const CVRect32* source, int32_t, int32_t, void*) {
  if (map == nullptr || source == nullptr || map->baseAddress == nullptr)
    return paramErr;
  const CVRect32& bounds = map->bounds;
  const bool ordered = bounds.top <= bounds.bottom && bounds.left <= bounds.right &&
                       source->top <= source->bottom && source->left <= source->right;
  const bool inside = source->top >= bounds.top && source->left >= bounds.left &&
                      source->bottom <= bounds.bottom && source->right <= bounds.right;
  if (!ordered || !inside || map->columnBytes < 1 || map->rowBytes < 0)
    return paramErr;
  const int64_t width = int64_t{bounds.right} - bounds.left;
  if (width > map->rowBytes / map->columnBytes)
    return paramErr;
  if (map->version < 0 || map->version > 1)
    return paramErr;
  const CVPixelMask* mask = map->version == 1 ? map->mask : nullptr;
  if (map->version == 1 && (mask == nullptr || mask->maskData == nullptr))
    return paramErr;
  return noErr;
}
