// A folder of styles, its files, and writing into it. Private to the styles.
#pragma once

#include <string>
#include <string_view>

#include "LM_style.h"
#include "MacStrings.h"
#include "atomic_file.h"

// A folder, as the File Manager names it.
struct LM_style_place {
  int16_t vRefNum;
  int32_t dirID;
};

// LM_GetStyleFolder, and why not: memFullErr for want of memory, anything else for want of the
// folder.
OSErr LM_FindStyleFolder(LM_style_place& folder);

// Asks for a file of the folder: the one of that name, or the one at a place, from 1, whose name it
// tells. fnfErr when there is none.
OSErr LM_FindFile(const LM_style_place& folder, StringPtr name, int16_t place = 0);

// Makes `name` that of the file it stands for in a folder. fnfErr when it stands for none.
OSErr LM_FindStyleName(const LM_style_place& folder, StringPtr name);

// The style folder and the file in it that `name`, cut, stands for, if there is one. False without
// a folder.
bool LM_FindStyle(LM_style_place& folder, StringPtr name);

// Reads a file from its beginning, at most so many bytes of it. Throws std::bad_alloc.
OSErr LM_ReadStyleFile(const LM_style_place& folder, ConstStr255Param name, size_t most,
                       std::string& bytes);

// Writes a file whole, in place of an old one or only where the name is free. At every moment, also
// after a crash, the name stands for what it stood for before or for all of the bytes. False when
// anything fails. Throws std::bad_alloc.
bool LM_WriteStyleFile(const LM_style_place& folder, ConstStr255Param name, std::string_view bytes,
                       limn::Existing existing);
bool LM_WriteStyleFile(const LM_style_place& folder, ConstStr255Param name, const LM_style& style,
                       limn::Existing existing);
