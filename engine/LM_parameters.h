// Where the plug-in's parameter block lives: in a handle that the host keeps in `savedParams`
// between the runs of one host session.
#pragma once

#include "LM_block.h"
#include "LM_types.h"

// A new handle with a cleared block and its header, or null when memory is short. Owned by the
// caller.
CVHandle LM_NewParameters();

// The block in the record's savedParams, or null when there is none, or one that this program
// cannot have made. Valid while the handle is.
foo* LM_Parameters(const FilterRecord* record);
