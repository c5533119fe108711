// The texts, layouts and pictures that the plug-in carries.
#ifndef LIMN_RESOURCES_H
#define LIMN_RESOURCES_H

#include "TB_EmbeddedFile.h"

// All files below resources/ that are carried, ready for TB_UseResources.
extern const TB_EmbeddedFile LM_RESOURCES[];
extern const size_t LM_RESOURCES_COUNT;

#endif
