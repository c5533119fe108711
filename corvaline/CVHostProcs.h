// The functions that a run puts into the record: C on the outside, the thread's current run inside.
// None of them lets an exception through into the plug-in.
#pragma once

#include "CVFilterRecord.h"

#include <cstdint>

uint8_t CVTestCancel();
void CVReportProgress(int32_t done, int32_t total);
// No call is known: does nothing.
void CVHostCall(int16_t selector, int32_t* data);
int16_t CVNextTile();
int16_t CVQueryProperty(uint32_t signature, uint32_t key, int32_t index, int32_t* simpleValue,
                        CVHandle* handle);
