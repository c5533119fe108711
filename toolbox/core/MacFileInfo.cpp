#include "MacFiles.h"

#include "MacStrings.h"
#include "TB_FileNames.h"
#include "TB_FilePlace.h"

#include <cerrno>

namespace {

OSErr PlaceIn(const std::string& folder, std::string_view name, std::string* path) {
  const std::optional<std::string> fileName = TB_FileNameFor(name);
  if (!fileName)
    return bdNamErr;
  *path = (folder == "/" ? "" : folder) + "/" + *fileName;
  return noErr;
}

// The name of the file at a place (from 1) of the folder's listing. A file that vanished since the
// folder was listed does not end the listing for the caller.
OSErr FindListed(const std::string& folder, int16_t index, std::string* name) {
  for (int attempt = 0; attempt < 3; ++attempt) {
    TB_Listing names = TB_ListFolder(folder);
    if (!names)
      return dirNFErr;
    if (static_cast<size_t>(index) > names->size())
      return fnfErr;
    *name = (*names)[static_cast<size_t>(index) - 1];
    std::string path;
    struct stat status;
    if (OSErr err = PlaceIn(folder, *name, &path))
      return err;
    if (TB_StatusOf(path, TB_Links::Follow, &status) == noErr && S_ISREG(status.st_mode))
      return noErr;
    TB_ForgetListing();
  }
  return fnfErr;
}

OSErr GetListed(const HFileParam& file) {
  return TB_FileOperation([&]() -> OSErr {
    std::string folder;
    std::string name;
    if (OSErr err = TB_FolderPath(file.ioVRefNum, file.ioDirID, &folder))
      return err;
    if (OSErr err = FindListed(folder, file.ioFDirIndex, &name))
      return err;
    PLstrcpy(file.ioNamePtr, TB_PString(name));
    return noErr;
  });
}

} // namespace

OSErr TB_FindPlace(int16_t vRefNum, int32_t dirID, ConstStr255Param name, std::string* path) {
  std::string folder;
  if (OSErr err = TB_FolderPath(vRefNum, dirID, &folder))
    return err;
  return name ? PlaceIn(folder, TB_StdString(name), path) : bdNamErr;
}

OSErr TB_StatusOf(const std::string& path, TB_Links links, struct stat* status) {
  const int done =
      links == TB_Links::Follow ? stat(path.c_str(), status) : lstat(path.c_str(), status);
  return done == 0 ? noErr : TB_ErrorFor(errno);
}

OSErr PBHGetVol(WDPBPtr block, Boolean) {
  return TB_FileOperation([&]() -> OSErr {
    std::string folder;
    if (OSErr err = TB_FolderPath(TB_VOLUME, 0, &folder))
      return err;
    block->ioWDVRefNum = TB_VOLUME;
    block->ioWDDirID = TB_FolderID(folder);
    return noErr;
  });
}

OSErr PBGetCatInfo(CInfoPBPtr block, Boolean) {
  HFileInfo& info = block->hFileInfo;
  const auto look = [&](const std::string& path) -> OSErr {
    struct stat status;
    if (OSErr err = TB_StatusOf(path, TB_Links::Follow, &status))
      return err;
    const bool isFolder = S_ISDIR(status.st_mode);
    info.ioFlAttrib = isFolder ? kFolderBit : 0;
    if (!isFolder)
      return noErr;
    std::string resolved;
    if (OSErr err = TB_ResolveFolder(path, &resolved))
      return err;
    info.ioDirID = TB_FolderID(resolved);
    return noErr;
  };
  return TB_AtPlace(info.ioVRefNum, info.ioDirID, info.ioNamePtr, look);
}

OSErr PBHGetFInfo(HParmBlkPtr block, Boolean) {
  const HFileParam& file = block->fileParam;
  if (file.ioFDirIndex > 0)
    return GetListed(file);
  return TB_AtPlace(file.ioVRefNum, file.ioDirID, file.ioNamePtr,
                    [](const std::string& path) -> OSErr {
                      struct stat status;
                      if (OSErr err = TB_StatusOf(path, TB_Links::Follow, &status))
                        return err;
                      if (S_ISREG(status.st_mode))
                        return noErr;
                      return S_ISDIR(status.st_mode) ? fnfErr : notAFileErr;
                    });
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

std::string TB_PathOf(int16_t vRefNum, int32_t dirID, ConstStr255Param name) {
  std::string path;
  const OSErr err =
      name ? TB_FindPlace(vRefNum, dirID, name, &path) : TB_FolderPath(vRefNum, dirID, &path);
  return err == noErr ? path : std::string();
}
