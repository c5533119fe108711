#include "LM_style_library.h"

#include <cstdlib>
#include <filesystem>
#include <pwd.h>
#include <unistd.h>

#include "LM_mac_stream.h"
#include "LM_style_seeding.h"
#include "LM_style_temporary.h"
#include "MacFiles.h"

namespace {

constexpr std::string_view FOLDER = "limn";

bool libraryIsMissing = false;

// The user's data folder; empty when the user has none.
std::filesystem::path DataFolder() {
  // A relative path is to be ignored there.
  const char* data = std::getenv("XDG_DATA_HOME");
  if (data != nullptr && data[0] == '/')
    return data;
  const char* home = std::getenv("HOME");
  if (home == nullptr || home[0] != '/') {
    const passwd* user = getpwuid(getuid());
    home = user != nullptr ? user->pw_dir : nullptr;
  }
  return home != nullptr && home[0] == '/' ? std::filesystem::path(home) / ".local" / "share"
                                           : std::filesystem::path();
}

// Makes the folder the default directory. Empty, or why not.
std::string EnterFolder(const std::filesystem::path& folder) {
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (error)
    return "The folder “" + folder.string() + "” for styles cannot be created: " + error.message() +
           ".";
  if (TB_SetDefaultDirectory(folder.string()) != noErr)
    return "The folder “" + folder.string() + "” for styles cannot be opened.";
  return {};
}

std::string EnterLibrary() {
  const std::filesystem::path data = DataFolder();
  if (data.empty())
    return "There is no home folder to keep styles in.";
  return EnterFolder(data / FOLDER);
}

// True when it is certain that nothing has that name.
bool IsFree(const LM_style_place& folder, StringPtr name) {
  HParamBlockRec block = {};
  block.fileParam.ioNamePtr = name;
  block.fileParam.ioVRefNum = folder.vRefNum;
  block.fileParam.ioDirID = folder.dirID;
  return PBHGetFInfo(&block, 0) == fnfErr;
}

// Writes the settings to a temporary file, which place(its name) then makes the style.
template <class Place>
LM_bool SaveThrough(const LM_style_place& folder, LM_globals* globals, Place place) {
  const LM_folder_use use(folder);
  TB_Str255 temporary = LM_TemporaryName();
  if (LM_SaveStyleDurably(temporary.bytes, globals) != 0 && place(temporary) == noErr) {
    use.Flush();
    return 1;
  }
  HDelete(folder.vRefNum, folder.dirID, temporary);
  return 0;
}

} // namespace

bool LM_UseStyleLibrary(std::string& why) {
  why = EnterLibrary();
  libraryIsMissing = !why.empty();
  if (libraryIsMissing)
    return false;
  LM_style_place styles = {};
  WDPBRec library = {};
  if (PBHGetVol(&library, 0) != noErr || LM_GetStyleFolder(&styles.vRefNum, &styles.dirID) == 0) {
    libraryIsMissing = true;
    why = "The style folder in “" + TB_PathOf(0, 0, nullptr) + "” cannot be created.";
    return false;
  }
  const LM_style_place folder = {library.ioWDVRefNum, library.ioWDDirID};
  LM_SweepTemporaries(folder);
  LM_SweepTemporaries(styles);
  why = LM_SeedStyles(folder, styles);
  return true;
}

bool LM_StyleLibraryIsMissing() {
  return libraryIsMissing;
}

std::string LM_StyleFolderPath() {
  LM_style_place styles = {};
  return LM_GetStyleFolder(&styles.vRefNum, &styles.dirID) != 0
             ? TB_PathOf(styles.vRefNum, styles.dirID, nullptr)
             : std::string();
}

LM_bool LM_ReplaceStyle(StringPtr name, LM_globals* globals) {
  LM_style_istream old;
  const bool isStyle = old.Open(name) != 0;
  old.Close();
  LM_style_place folder = {};
  if (LM_GetStyleFolder(&folder.vRefNum, &folder.dirID) == 0 || (!isStyle && !IsFree(folder, name)))
    return 0;
  return SaveThrough(folder, globals, [&](ConstStr255Param temporary) {
    return TB_ReplaceFile(folder.vRefNum, folder.dirID, temporary, name);
  });
}

LM_bool LM_AddStyle(StringPtr name, LM_globals* globals) {
  TB_CutPString(name, LM_MAX_STYLE_NAME);
  LM_style_place folder = {};
  if (LM_GetStyleFolder(&folder.vRefNum, &folder.dirID) == 0)
    return 0;
  return SaveThrough(folder, globals, [&](ConstStr255Param temporary) {
    return HRename(folder.vRefNum, folder.dirID, temporary, name);
  });
}
