// The style folder: finding it, and what may be done with a file in it.
#include "LM_mac_stream.h"
#include "LM_style_library.h"
#include "LM_style_place.h"
#include "MacFiles.h"
#include "MacResources.h"

namespace {

constexpr int16_t STYLE_FOLDER_NAME_LIST = 138;

OSErr LookUpFolder(int16_t vRefNum, int32_t parent, StringPtr name, int32_t* dirID) {
  CInfoPBRec block = {};
  block.hFileInfo.ioNamePtr = name;
  block.hFileInfo.ioVRefNum = vRefNum;
  block.hFileInfo.ioDirID = parent;
  if (const OSErr result = PBGetCatInfo(&block, 0); result != noErr)
    return result;
  if ((block.hFileInfo.ioFlAttrib & kFolderBit) == 0)
    return dirNFErr;
  *dirID = block.hFileInfo.ioDirID;
  return noErr;
}

// What opening a file of the style folder answers.
OSErr TryOpen(StringPtr name, int8_t permission) {
  LM_style_place folder = {};
  if (!LM_FindStyle(folder, name))
    return dirNFErr;
  int16_t reference = 0;
  const OSErr result = HOpen(folder.vRefNum, folder.dirID, name, permission, &reference);
  if (result == noErr)
    FSClose(reference);
  return result;
}

} // namespace

OSErr LM_FindStyleFolder(LM_style_place& folder) {
  WDPBRec volume = {};
  if (LM_StyleLibraryIsMissing())
    return dirNFErr;
  if (const OSErr result = PBHGetVol(&volume, 0); result != noErr)
    return result;
  Str255 name;
  GetIndString(name, STYLE_FOLDER_NAME_LIST, 1);
  if (name[0] == 0) // there was no memory for it, and no name means the folder above
    return memFullErr;
  folder.vRefNum = volume.ioWDVRefNum;
  const OSErr found = LookUpFolder(folder.vRefNum, volume.ioWDDirID, name, &folder.dirID);
  if (found == noErr || found == memFullErr)
    return found;
  int32_t created = 0;
  const OSErr result = DirCreate(folder.vRefNum, volume.ioWDDirID, name, &created);
  return result == noErr ? LookUpFolder(folder.vRefNum, volume.ioWDDirID, name, &folder.dirID)
                         : result;
}

LM_bool LM_GetStyleFolder(int16_t* vRefNum, int32_t* dirID) {
  LM_style_place folder = {};
  const bool isFound = LM_FindStyleFolder(folder) == noErr;
  *vRefNum = folder.vRefNum;
  *dirID = folder.dirID;
  return isFound ? 1 : 0;
}

OSErr LM_FindFile(const LM_style_place& folder, StringPtr name, int16_t place) {
  HParamBlockRec block = {};
  block.fileParam.ioNamePtr = name;
  block.fileParam.ioVRefNum = folder.vRefNum;
  block.fileParam.ioDirID = folder.dirID;
  block.fileParam.ioFDirIndex = place;
  return PBHGetFInfo(&block, 0);
}

OSErr LM_FindStyleName(const LM_style_place& folder, StringPtr name) {
  OSErr result = LM_FindFile(folder, name);
  if (result != fnfErr)
    return result;
  Str255 found;
  for (int16_t place = 1; place < INT16_MAX; ++place) {
    result = LM_FindFile(folder, found, place);
    if (result != noErr)
      return result;
    if (EqualString(found, name, 0, 0) != 0) {
      LM_PStringCopy(name, found);
      return noErr;
    }
  }
  return fnfErr;
}

bool LM_FindStyle(LM_style_place& folder, StringPtr name) {
  TB_CutPString(name, LM_MAX_STYLE_NAME);
  if (LM_FindStyleFolder(folder) != noErr)
    return false;
  LM_FindStyleName(folder, name);
  return true;
}

LM_bool LM_style_ostream::Erase(StringPtr name) {
  TB_CutPString(name, LM_MAX_STYLE_NAME);
  LM_style_place folder = {};
  const bool isErased =
      LM_FindStyleFolder(folder) == noErr && HDelete(folder.vRefNum, folder.dirID, name) == noErr;
  return isErased ? 1 : 0;
}

LM_bool LM_style_ostream::IsLocked(StringPtr name) {
  return TryOpen(name, fsWrPerm) == permErr ? 1 : 0;
}

LM_bool LM_style_istream::Exists(StringPtr name) {
  return TryOpen(name, fsRdPerm) == noErr ? 1 : 0;
}
