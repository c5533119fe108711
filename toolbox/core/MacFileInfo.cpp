#include "MacFiles.h"

#include "MacStrings.h"
#include "TB_FileNames.h"
#include "TB_FilePlace.h"
#include "TB_Folders.h"

#include <algorithm>
#include <cerrno>

namespace {

constexpr int16_t VOLUME = -1;

std::string LastPart(const std::string& path) {
  return path == "/" ? path : path.substr(path.rfind('/') + 1);
}

// How a name is shown that may not lead back to its file.
std::string ShownName(const std::string& fileName) {
  return TB_NameForFile(fileName).value_or(fileName);
}

void StoreName(StringPtr dest, const std::string& name) {
  if (dest)
    PLstrcpy(dest, TB_PString(name));
}

// The file at a place (from 1) of the folder's listing. A file that vanished since the folder was
// listed does not end the listing for the caller.
OSErr FindListed(const std::string& folder, int16_t index, std::string* name, struct stat* status) {
  for (int attempt = 0; attempt < 3; ++attempt) {
    TB_Listing names = TB_ListFolder(folder);
    if (!names)
      return dirNFErr;
    if (static_cast<size_t>(index) > names->size())
      return fnfErr;
    *name = (*names)[static_cast<size_t>(index) - 1];
    TB_FilePlace place;
    if (OSErr err = TB_PlaceIn(folder, *name, &place))
      return err;
    if (TB_StatusOf(place.path, TB_Links::Follow, status) == noErr && S_ISREG(status->st_mode))
      return noErr;
    TB_ForgetListing(folder);
  }
  return fnfErr;
}

int32_t LengthOf(const struct stat& status) {
  return static_cast<int32_t>(std::clamp<int64_t>(status.st_size, 0, INT32_MAX));
}

uint8_t AttributesOf(const struct stat& status) {
  return static_cast<uint8_t>((TB_IsLocked(status) ? kFileLockedBit : 0) |
                              (S_ISDIR(status.st_mode) ? kFolderBit : 0));
}

OSErr GetFileInfo(HFileParam* block) {
  struct stat status;
  if (block->ioFDirIndex > 0) {
    std::string folder;
    std::string name;
    if (OSErr err = TB_FolderPath(block->ioVRefNum, block->ioDirID, &folder))
      return err;
    if (OSErr err = FindListed(folder, block->ioFDirIndex, &name, &status))
      return err;
    StoreName(block->ioNamePtr, name);
  } else {
    TB_FilePlace place;
    if (OSErr err = TB_FindPlace(block->ioVRefNum, block->ioDirID, block->ioNamePtr, &place))
      return err;
    if (OSErr err = TB_StatusOf(place.path, TB_Links::Follow, &status))
      return err;
    if (!S_ISREG(status.st_mode))
      return S_ISDIR(status.st_mode) ? fnfErr : notAFileErr;
  }
  block->ioFlAttrib = AttributesOf(status);
  block->ioFlLgLen = LengthOf(status);
  return noErr;
}

OSErr GetCatInfo(HFileInfo* block) {
  struct stat status;
  TB_FilePlace place;
  if (block->ioFDirIndex < 0) {
    if (OSErr err = TB_FolderPath(block->ioVRefNum, block->ioDirID, &place.path))
      return err;
  } else if (block->ioFDirIndex == 0) {
    if (OSErr err = TB_FindPlace(block->ioVRefNum, block->ioDirID, block->ioNamePtr, &place))
      return err;
  } else {
    std::string name;
    if (OSErr err = TB_FolderPath(block->ioVRefNum, block->ioDirID, &place.folder))
      return err;
    if (OSErr err = FindListed(place.folder, block->ioFDirIndex, &name, &status))
      return err;
    if (OSErr err = TB_PlaceIn(place.folder, name, &place))
      return err;
    StoreName(block->ioNamePtr, name);
  }
  if (OSErr err = TB_StatusOf(place.path, TB_Links::Follow, &status))
    return err;
  block->ioFlAttrib = AttributesOf(status);
  if (!S_ISDIR(status.st_mode)) {
    block->ioFlLgLen = LengthOf(status);
    return noErr;
  }
  std::string resolved;
  if (OSErr err = TB_ResolveFolder(place.path, &resolved))
    return err;
  if (block->ioFDirIndex < 0)
    StoreName(block->ioNamePtr, ShownName(LastPart(resolved)));
  block->ioDirID = TB_FolderID(resolved);
  return noErr;
}

} // namespace

OSErr TB_PlaceIn(const std::string& folder, std::string_view name, TB_FilePlace* place) {
  const std::optional<std::string> fileName = TB_FileNameFor(name);
  if (!fileName)
    return bdNamErr;
  *place = {folder, (folder == "/" ? "" : folder) + "/" + *fileName};
  return noErr;
}

OSErr TB_FindPlace(int16_t vRefNum, int32_t dirID, ConstStr255Param name, TB_FilePlace* place) {
  std::string folder;
  if (OSErr err = TB_FolderPath(vRefNum, dirID, &folder))
    return err;
  return name ? TB_PlaceIn(folder, TB_StdString(name), place) : bdNamErr;
}

OSErr TB_StatusOf(const std::string& path, TB_Links links, struct stat* status) {
  const int done =
      links == TB_Links::Follow ? stat(path.c_str(), status) : lstat(path.c_str(), status);
  return done == 0 ? noErr : TB_ErrorFor(errno);
}

OSErr PBHGetVol(WDPBPtr block, Boolean) {
  return block->ioResult = TB_FileOperation([&] {
           std::string folder;
           if (OSErr err = TB_FolderPath(0, 0, &folder))
             return err;
           StoreName(block->ioNamePtr, ShownName(LastPart(folder)));
           block->ioVRefNum = block->ioWDVRefNum = VOLUME;
           block->ioWDDirID = TB_FolderID(folder);
           return noErr;
         });
}

OSErr PBGetCatInfo(CInfoPBPtr block, Boolean) {
  return block->hFileInfo.ioResult =
             TB_FileOperation([&] { return GetCatInfo(&block->hFileInfo); });
}

OSErr PBHGetFInfo(HParmBlkPtr block, Boolean) {
  return block->fileParam.ioResult =
             TB_FileOperation([&] { return GetFileInfo(&block->fileParam); });
}

OSErr TB_SetDefaultDirectory(std::string_view path) {
  std::string resolved;
  if (!path.empty()) {
    if (OSErr err = TB_ResolveFolder(std::string(path), &resolved))
      return err;
  }
  TB_SetDefaultFolder(resolved);
  return noErr;
}

OSErr TB_DirectoryForPath(std::string_view path, int16_t* vRefNum, int32_t* dirID) {
  std::string resolved;
  if (OSErr err = TB_ResolveFolder(std::string(path), &resolved))
    return err;
  *vRefNum = VOLUME;
  *dirID = TB_FolderID(resolved);
  return noErr;
}

std::string TB_PathOf(int16_t vRefNum, int32_t dirID, ConstStr255Param name) {
  TB_FilePlace place;
  const OSErr err = name ? TB_FindPlace(vRefNum, dirID, name, &place)
                         : TB_FolderPath(vRefNum, dirID, &place.path);
  return err == noErr ? place.path : std::string();
}
