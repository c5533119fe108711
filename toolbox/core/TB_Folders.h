// Folders by id, their listings, and what every File Manager call shares. Private to the toolbox.
#pragma once

#include "MacTypes.h"

#include <memory>
#include <new>
#include <string>
#include <vector>

// The only volume there is.
constexpr int16_t TB_VOLUME = -1;

// The id of a folder, by its path without links; the same path always has the same id.
int32_t TB_FolderID(const std::string& path);
// The path of the folder that a pair stands for, into *path. nsvErr or dirNFErr when there is none.
OSErr TB_FolderPath(int16_t vRefNum, int32_t dirID, std::string* path);
// The folder's path without links, into *resolved. dirNFErr when there is no such folder.
OSErr TB_ResolveFolder(const std::string& path, std::string* resolved);
// Makes the folder (resolved) the default one; empty: the current directory.
void TB_SetDefaultFolder(const std::string& path);

using TB_Listing = std::shared_ptr<const std::vector<std::string>>;
// The names of the files in a folder, sorted; null when it cannot be read. The last listing is kept
// until its folder changes.
TB_Listing TB_ListFolder(const std::string& path);
// Lists anew next time: after a change of our own, which may be too quick to be seen in the
// folder's time of change.
void TB_ForgetListing();

// The result code for an errno.
OSErr TB_ErrorFor(int error);

// Runs one File Manager call: memory exhaustion as a code.
template <typename Operation> OSErr TB_FileOperation(Operation operation) {
  try {
    return operation();
  } catch (const std::bad_alloc&) {
    return memFullErr;
  }
}
