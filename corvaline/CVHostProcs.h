// The functions that a run puts into the record: C on the outside, the thread's current run inside.
// None of them lets an exception through into the plug-in.
#ifndef CV_HOST_PROCS_H
#define CV_HOST_PROCS_H

#include "CVFilterRecord.h"

#include <cstdint>

std::uint8_t CVTestCancel();
void CVReportProgress(std::int32_t done, std::int32_t total);
// No call is known: does nothing.
void CVHostCall(std::int16_t selector, std::int32_t* data);
std::int16_t CVNextTile();
std::int16_t CVQueryProperty(std::uint32_t signature, std::uint32_t key, std::int32_t index,
                             std::int32_t* simpleValue, CVHandle* handle);

#endif
