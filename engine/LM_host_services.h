// What the plug-in asks of the host beside tiles. Each answers one of the host's result codes.
#pragma once

#include "LM_export.h"
#include "LM_types.h"

// True exactly when the host's signature is Corvaline's.
bool LM_HostIsCorvaline(const FilterRecord* record);

// Every machine this is built for computes with floating point: always 1.
LM_bool LM_HasFPU();

// True when the user has asked to stop.
bool LM_TestCancel(const FilterRecord* record);

// The host call of general use; its outcome is ignored.
void LM_CallHostProc(FilterRecord* record, int16_t selector, int32_t* data);

// Draws `source` of `map` with its top-left at (row, column) of the current port. The host must
// offer showPixels, which the prepare step checks.
LM_EXPORT int16_t LM_DisplayPixels(FilterRecord* record, const CVPixelMap* map,
                                   const CVRect32& source, int32_t row, int32_t column);

// Number of channels of the document. CV_RESULT_NO_SERVICE when the host answers no properties.
LM_EXPORT int16_t LM_GetNumChannels(int16_t& count, FilterRecord* record);

// Name of channel `index`, from 0, cut to 255 bytes. CV_RESULT_NO_SERVICE when the host answers no
// properties or no name.
LM_EXPORT int16_t LM_GetChannelName(int16_t index, Str255 name, FilterRecord* record);
