#include "LM_style_library.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <pwd.h>
#include <unistd.h>

#include "LM_mac_stream.h"
#include "LM_style_codec.h"
#include "LM_style_place.h"
#include "LM_style_seeding.h"
#include "LM_style_settings.h"
#include "MacFiles.h"
#include "failure.h"
#include "temporary_sweep.h"

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

// Makes the library's folder the default directory. Empty, or why not.
std::string EnterLibrary() {
  const std::filesystem::path data = DataFolder();
  if (data.empty())
    return "There is no home folder to keep styles in.";
  const std::filesystem::path folder = data / FOLDER;
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (error)
    return "The folder “" + folder.string() + "” for styles cannot be created: " + error.message() +
           ".";
  if (TB_SetDefaultDirectory(folder.string()) != noErr)
    return "The folder “" + folder.string() + "” for styles cannot be opened.";
  return {};
}

// Removes the files of writers that were killed.
void Sweep(const LM_style_place& folder) {
  limn::SweepTemporaries(TB_PathOf(folder.vRefNum, folder.dirID, nullptr));
}

LM_bool Save(const LM_style_place& folder, StringPtr name, const LM_globals& globals,
             limn::Existing existing) {
  return LM_WriteStyleFile(folder, name, LM_StyleOfSettings(globals), existing) ? 1 : 0;
}

} // namespace

OSErr LM_ReadStyleFile(const LM_style_place& folder, ConstStr255Param name, size_t most,
                       std::string& bytes) {
  bytes.resize(most);
  int16_t file = 0;
  int32_t count = 0;
  OSErr result = HOpen(folder.vRefNum, folder.dirID, name, fsRdPerm, &file);
  if (result == noErr) {
    count = static_cast<int32_t>(most);
    result = FSRead(file, &count, bytes.data());
    FSClose(file);
  }
  bytes.resize(static_cast<size_t>(std::max(count, 0)));
  return result == eofErr ? noErr : result;
}

bool LM_WriteStyleFile(const LM_style_place& folder, ConstStr255Param name, std::string_view bytes,
                       limn::Existing existing) {
  const std::string path = TB_PathOf(folder.vRefNum, folder.dirID, name);
  if (path.empty())
    return false;
  std::optional<limn::AtomicFile> file;
  try {
    file.emplace(path, existing);
    file->Write(bytes.data(), bytes.size());
    file->Commit();
  } catch (const limn::Failure&) {
    // It is there all the same when only its folder could not be flushed.
  }
  return file && file->HasName();
}

bool LM_WriteStyleFile(const LM_style_place& folder, ConstStr255Param name, const LM_style& style,
                       limn::Existing existing) {
  uint8_t bytes[LM_STYLE_MAX_BYTES];
  const size_t size = LM_EncodeStyle(style, bytes);
  return LM_WriteStyleFile(folder, name, {reinterpret_cast<const char*>(bytes), size}, existing);
}

bool LM_UseStyleLibrary(std::string& why) {
  why = EnterLibrary();
  libraryIsMissing = !why.empty();
  if (libraryIsMissing)
    return false;
  LM_style_place styles = {};
  WDPBRec library = {};
  if (PBHGetVol(&library, 0) != noErr || LM_FindStyleFolder(styles) != noErr) {
    libraryIsMissing = true;
    why = "The style folder in “" + TB_PathOf(0, 0, nullptr) + "” cannot be created.";
    return false;
  }
  const LM_style_place folder = {library.ioWDVRefNum, library.ioWDDirID};
  Sweep(folder);
  Sweep(styles);
  why = LM_SeedStyles(folder, styles);
  return true;
}

bool LM_StyleLibraryIsMissing() {
  return libraryIsMissing;
}

LM_bool LM_ReplaceStyle(StringPtr name, LM_globals* globals) {
  LM_style_istream old;
  const bool isStyle = old.Open(name) != 0;
  old.Close();
  LM_style_place folder = {};
  // Where no style is, it has to be certain that nothing has that name.
  if (LM_FindStyleFolder(folder) != noErr || LM_style_ostream::IsLocked(name) != 0 ||
      (!isStyle && LM_FindFile(folder, name) != fnfErr))
    return 0;
  return Save(folder, name, *globals, limn::Existing::Replace);
}

LM_bool LM_AddStyle(StringPtr name, LM_globals* globals) {
  TB_CutPString(name, LM_MAX_STYLE_NAME);
  LM_style_place folder = {};
  if (LM_FindStyleFolder(folder) != noErr || LM_FindStyleName(folder, name) != fnfErr)
    return 0;
  return Save(folder, name, *globals, limn::Existing::Keep);
}
