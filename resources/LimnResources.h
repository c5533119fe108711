// The texts, layouts and pictures that the plug-in carries.
#pragma once

#include "TB_EmbeddedFile.h"

// All files below resources/ that are carried, ready for TB_UseResources.
extern const TB_EmbeddedFile LM_RESOURCES[];
extern const size_t LM_RESOURCES_COUNT;
