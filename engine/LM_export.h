// The mark of what the dialog calls of the engine and the styles. They are in the plug-in, limn.so,
// and the dialog is a module of its own.
#pragma once

#define LM_EXPORT __attribute__((visibility("default")))
