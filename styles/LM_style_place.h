// A folder of styles, and writing into it. Private to the styles.
#pragma once

#include <string_view>

#include "MacStrings.h"
#include "atomic_file.h"

// A folder, as the File Manager names it.
struct LM_style_place {
  int16_t vRefNum;
  int32_t dirID;
};

// Writes a file whole, in place of an old one or only where the name is free. At every moment, also
// after a crash, the name stands for what it stood for before or for all of the bytes. False when
// anything fails. Throws std::bad_alloc.
bool LM_WriteStyleFile(const LM_style_place& folder, ConstStr255Param name, std::string_view bytes,
                       limn::Existing existing);

// Removes the files of writers that were killed.
void LM_SweepStyles(const LM_style_place& folder);
