// The functions that a run puts into the record.
#pragma once

#include "CVFilterRecord.h"

// C on the outside, the thread's current run inside. None of them lets an exception through into
// the plug-in.
void CVSetHostProcs(FilterRecord& record);
