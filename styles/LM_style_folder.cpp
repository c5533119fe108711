// The style folder: finding it, listing it, and what may be done with a file in it.
#include <algorithm>

#include "LM_mac_stream.h"
#include "LM_style_library.h"
#include "MacFiles.h"
#include "MacResources.h"
#include "MacStrings.h"

namespace {

constexpr int16_t STYLE_FOLDER_NAME_LIST = 138;

bool LookUpFolder(int16_t vRefNum, int32_t parent, StringPtr name, int32_t* dirID) {
  CInfoPBRec block = {};
  block.hFileInfo.ioNamePtr = name;
  block.hFileInfo.ioVRefNum = vRefNum;
  block.hFileInfo.ioDirID = parent;
  if (PBGetCatInfo(&block, 0) != noErr || (block.hFileInfo.ioFlAttrib & kFolderBit) == 0)
    return false;
  *dirID = block.hFileInfo.ioDirID;
  return true;
}

// A named file of the style folder.
struct FolderFile {
  explicit FolderFile(StringPtr fileName) : name(fileName) {
    TB_CutPString(name, LM_MAX_STYLE_NAME);
    found = LM_GetStyleFolder(&vRefNum, &dirID) != 0;
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

LM_bool LM_GetStyleFolder(int16_t* vRefNum, int32_t* dirID) {
  WDPBRec volume = {};
  if (LM_StyleLibraryIsMissing())
    return 0;
  if (PBHGetVol(&volume, 0) != noErr)
    return 0;
  Str255 name;
  GetIndString(name, STYLE_FOLDER_NAME_LIST, 1);
  if (name[0] == 0) // there was no memory for it, and no name means the folder above
    return 0;
  *vRefNum = volume.ioWDVRefNum;
  if (LookUpFolder(*vRefNum, volume.ioWDDirID, name, dirID))
    return 1;
  int32_t created = 0;
  if (DirCreate(*vRefNum, volume.ioWDDirID, name, &created) != noErr)
    return 0;
  return LookUpFolder(*vRefNum, volume.ioWDDirID, name, dirID) ? 1 : 0;
}

LM_bool LM_style_ostream::Erase(StringPtr name) {
  const FolderFile file(name);
  return file.found && HDelete(file.vRefNum, file.dirID, file.name) == noErr ? 1 : 0;
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
