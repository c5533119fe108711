// Resources behind the handles of GetResource. Private to this layer.
#pragma once

#include "MacTypes.h"

// The number of the resource of that type behind a handle, or INT16_MIN.
int16_t ResourceNumber(Handle resource, OSType type);
