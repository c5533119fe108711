// Where a name in a folder lies, and what is there. Private to the File Manager.
#pragma once

#include "MacTypes.h"

#include <string>
#include <sys/stat.h>

struct TB_FilePlace {
  std::string folder;
  std::string path; // of the file, within the folder
};

// Finds the place of a name, which need not exist.
OSErr TB_FindPlace(int16_t vRefNum, int32_t dirID, ConstStr255Param name, TB_FilePlace* place);
// The same for a folder's path and a name.
OSErr TB_PlaceIn(const std::string& folder, std::string_view name, TB_FilePlace* place);

// What to do with a symbolic link.
enum class TB_Links { Follow, Keep };
// What lies at a path. fnfErr when nothing does.
OSErr TB_StatusOf(const std::string& path, TB_Links links, struct stat* status);

// A file that nobody may write to, whoever asks.
inline bool TB_IsLocked(const struct stat& status) {
  return (status.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0;
}
