// The style folder: finding it, listing it, and what may be done with a file in it.

#include "LM_mac_stream.h"
#include "LM_style_library.h"
#include "MacFiles.h"
#include "MacResources.h"
#include "MacStrings.h"

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

// A named file of the style folder.
struct FolderFile {
  explicit FolderFile(StringPtr fileName) : name(fileName) {
    found = LM_FindStyle(&vRefNum, &dirID, name);
  }
  OSErr TryOpen(int8_t permission) const {
    int16_t reference = 0;
    const OSErr result = HOpen(vRefNum, dirID, name, permission, &reference);
    if (result == noErr)
      FSClose(reference);
    return result;
  }
  StringPtr name;
  int16_t vRefNum = 0;
  int32_t dirID = 0;
  bool found;
};

} // namespace

OSErr LM_FindStyleFolder(int16_t* vRefNum, int32_t* dirID) {
  WDPBRec volume = {};
  if (LM_StyleLibraryIsMissing())
    return dirNFErr;
  if (const OSErr result = PBHGetVol(&volume, 0); result != noErr)
    return result;
  Str255 name;
  GetIndString(name, STYLE_FOLDER_NAME_LIST, 1);
  if (name[0] == 0) // there was no memory for it, and no name means the folder above
    return memFullErr;
  *vRefNum = volume.ioWDVRefNum;
  const OSErr found = LookUpFolder(*vRefNum, volume.ioWDDirID, name, dirID);
  if (found == noErr || found == memFullErr)
    return found;
  int32_t created = 0;
  if (const OSErr result = DirCreate(*vRefNum, volume.ioWDDirID, name, &created); result != noErr)
    return result;
  return LookUpFolder(*vRefNum, volume.ioWDDirID, name, dirID);
}

LM_bool LM_GetStyleFolder(int16_t* vRefNum, int32_t* dirID) {
  return LM_FindStyleFolder(vRefNum, dirID) == noErr ? 1 : 0;
}

OSErr LM_FindStyleName(int16_t vRefNum, int32_t dirID, StringPtr name) {
  Str255 found;
  HParamBlockRec block = {};
  block.fileParam.ioNamePtr = found;
  block.fileParam.ioVRefNum = vRefNum;
  block.fileParam.ioDirID = dirID;
  LM_PStringCopy(found, name);
  OSErr result = PBHGetFInfo(&block, 0);
  if (result != fnfErr)
    return result;
  for (int16_t place = 1; place < INT16_MAX; ++place) {
    block.fileParam.ioFDirIndex = place;
    result = PBHGetFInfo(&block, 0);
    if (result != noErr)
      return result;
    if (EqualString(found, name, 0, 0) != 0) {
      LM_PStringCopy(name, found);
      return noErr;
    }
  }
  return fnfErr;
}

bool LM_FindStyle(int16_t* vRefNum, int32_t* dirID, StringPtr name) {
  TB_CutPString(name, LM_MAX_STYLE_NAME);
  if (LM_GetStyleFolder(vRefNum, dirID) == 0)
    return false;
  LM_FindStyleName(*vRefNum, *dirID, name);
  return true;
}

LM_bool LM_style_ostream::Erase(StringPtr name) {
  TB_CutPString(name, LM_MAX_STYLE_NAME);
  int16_t vRefNum = 0;
  int32_t dirID = 0;
  return LM_GetStyleFolder(&vRefNum, &dirID) != 0 && HDelete(vRefNum, dirID, name) == noErr ? 1 : 0;
}

LM_bool LM_style_ostream::IsLocked(StringPtr name) {
  const FolderFile file(name);
  return file.found && file.TryOpen(fsWrPerm) == permErr ? 1 : 0;
}

LM_bool LM_style_istream::Exists(StringPtr name) {
  const FolderFile file(name);
  return file.found && file.TryOpen(fsRdPerm) == noErr ? 1 : 0;
}

LM_bool LM_style_istream::IndexedInfo(int16_t index, StringPtr name) {
  if (index < 0)
    return 1;
  int16_t vRefNum = 0;
  int32_t dirID = 0;
  if (LM_GetStyleFolder(&vRefNum, &dirID) == 0)
    return 0;
  int styles = 0;
  for (int16_t place = 1; place < INT16_MAX; ++place) {
    HParamBlockRec block = {};
    block.fileParam.ioNamePtr = name;
    block.fileParam.ioVRefNum = vRefNum;
    block.fileParam.ioDirID = dirID;
    block.fileParam.ioFDirIndex = place;
    if (PBHGetFInfo(&block, 0) != noErr)
      break;
    LM_style_istream stream;
    if (stream.Open(name) != 0 && styles++ == index)
      return 1;
  }
  name[0] = 0;
  return 0;
}
