// Styles as the bytes of a style file: big-endian whatever the machine, no padding, a header of
// LM_STYLE_HEADER_BYTES and LM_STYLE_LIGHT_BYTES for each light.
#pragma once

#include <string>

#include "LM_style.h"

// Reads a style. True when the plug-in would load these bytes. `why` says what is wrong: with false
// why they do not load, with true what was passed over (a light cut off, more lights than are
// used), or nothing.
bool LM_DecodeStyle(const uint8_t* bytes, size_t size, LM_style& style, std::string& why);

// Writes a style's header and its whole lights; returns the number of bytes, which is what the
// light count written calls for.
size_t LM_EncodeStyle(const LM_style& style, uint8_t (&bytes)[LM_STYLE_MAX_BYTES]);
