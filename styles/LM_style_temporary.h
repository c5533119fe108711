// Files that are written under a hidden name before they get their own. Private to the styles.
#ifndef LM_STYLE_TEMPORARY_H
#define LM_STYLE_TEMPORARY_H

#include <string_view>

#include "MacStrings.h"

// A folder, as the File Manager names it.
struct LM_style_place {
  int16_t vRefNum;
  int32_t dirID;
};

// A hidden name that no other file of this or any other running process has.
TB_Str255 LM_TemporaryName();

// Removes the files of that kind that runs which ended left behind.
void LM_SweepTemporaries(const LM_style_place& folder);

// Writes a new file and brings its content to the disk. A failure leaves no file behind.
OSErr LM_WriteNewFile(const LM_style_place& folder, ConstStr255Param name, std::string_view bytes);

#endif
