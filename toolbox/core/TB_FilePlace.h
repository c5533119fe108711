// Where a name in a folder lies, and what is there. Private to the File Manager.
#pragma once

#include "TB_Folders.h"

#include <sys/stat.h>

// The path of a name, which need not exist.
OSErr TB_FindPlace(int16_t vRefNum, int32_t dirID, ConstStr255Param name, std::string* path);

// Runs a File Manager call on the path of a name.
template <typename Operation>
OSErr TB_AtPlace(int16_t vRefNum, int32_t dirID, ConstStr255Param name, Operation operation) {
  return TB_FileOperation([&]() -> OSErr {
    std::string path;
    const OSErr err = TB_FindPlace(vRefNum, dirID, name, &path);
    return err == noErr ? operation(path) : err;
  });
}

// What to do with a symbolic link.
enum class TB_Links { Follow, Keep };
// What lies at a path. fnfErr when nothing does.
OSErr TB_StatusOf(const std::string& path, TB_Links links, struct stat* status);

// A file that nobody may write to, whoever asks.
inline bool TB_IsLocked(const struct stat& status) {
  return (status.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0;
}
