#include "LM_host_services.h"

#include <algorithm>
#include <cstring>

#include "LM_arithmetic.h"
#include "MacDialogs.h"
#include "MacMemory.h"

namespace {

int16_t Query(const FilterRecord* record, uint32_t key, int32_t index, int32_t& value,
              CVHandle& handle) {
  if (record->queryProperty == nullptr)
    return CV_RESULT_NO_SERVICE;
  return record->queryProperty(CV_HOST_SIGNATURE, key, index, &value, &handle);
}

} // namespace

bool LM_HostIsCorvaline(const FilterRecord* record) {
  return record->hostSignature == CV_HOST_SIGNATURE;
}

LM_bool LM_HasFPU() {
  return 1;
}

bool LM_TestCancel(const FilterRecord* record) {
  return record->testCancel != nullptr && record->testCancel() != 0;
}

void LM_CallHostProc(FilterRecord* record, int16_t selector, int32_t* data) {
  if (record->hostCall != nullptr)
    record->hostCall(selector, data);
}

int16_t LM_DisplayPixels(FilterRecord* record, const CVPixelMap* map, const CVRect32& source,
                         int32_t row, int32_t column) {
  if (record->showPixels == nullptr)
    return CV_RESULT_NO_SERVICE;
  return record->showPixels(map, &source, row, column, nullptr);
}

int16_t LM_GetNumChannels(int16_t& count, FilterRecord* record) {
  int32_t value = 0;
  CVHandle handle = nullptr;
  const int16_t result = Query(record, CV_PROPERTY_NUM_CHANNELS, 0, value, handle);
  if (result == CV_RESULT_OK)
    count = LM_Saturate16(value);
  return result;
}

int16_t LM_GetChannelName(int16_t index, Str255 name, FilterRecord* record) {
  int32_t value = 0;
  CVHandle handle = nullptr;
  const int16_t result = Query(record, CV_PROPERTY_CHANNEL_NAME, index, value, handle);
  if (result != CV_RESULT_OK)
    return result;
  if (handle == nullptr)
    return CV_RESULT_NO_SERVICE;
  const Size length = std::clamp<Size>(GetHandleSize(handle), 0, 255);
  name[0] = static_cast<unsigned char>(length);
  if (length > 0)
    std::memcpy(name + 1, *handle, static_cast<size_t>(length));
  HostDisposeHandle(record->handleServices, handle);
  return CV_RESULT_OK;
}
