// Listing the style folder in one walk, and reading a style by its name.
#include <algorithm>
#include <new>

#include "LM_mac_stream.h"
#include "LM_style_codec.h"
#include "LM_style_library.h"
#include "LM_style_place.h"
#include "MacFiles.h"
#include "MacResources.h"

namespace {

constexpr int16_t DEFAULT_STYLE_NAME = 141;
constexpr size_t IDENTIFYING_BYTES = 6;

// The beginning of a file, as many bytes of it as a style may have and one more.
struct FileBytes {
  uint8_t bytes[LM_STYLE_MAX_BYTES + 1];
  size_t size = 0;
};

bool ReadBytes(const LM_style_place& folder, ConstStr255Param name, size_t most, FileBytes& read) {
  int16_t file = 0;
  if (HOpen(folder.vRefNum, folder.dirID, name, fsRdPerm, &file) != noErr)
    return false;
  int32_t count = static_cast<int32_t>(most);
  const OSErr result = FSRead(file, &count, read.bytes);
  read.size = static_cast<size_t>(std::max(count, 0));
  FSClose(file);
  return result == noErr || result == eofErr;
}

bool BeginsAsStyle(const FileBytes& read) {
  static_assert(LM_STYLE_MAGIC == CV_FOUR_CHARS('C', 'V', 'L', 'M'));
  static constexpr uint8_t START[IDENTIFYING_BYTES] = {
      LM_STYLE_SIGNATURE >> 8, LM_STYLE_SIGNATURE & 0xFF, 'C', 'V', 'L', 'M'};
  return read.size >= IDENTIFYING_BYTES && std::equal(START, START + IDENTIFYING_BYTES, read.bytes);
}

// Calls visit(name, content) for every file of the folder that begins as a style does. most: bytes
// of content that are wanted. Longer names than the style menu uses lead to no file there.
template <class Visit> void ForEachStyle(size_t most, Visit visit) {
  LM_style_place folder = {};
  if (LM_GetStyleFolder(&folder.vRefNum, &folder.dirID) == 0)
    return;
  Str255 name;
  FileBytes content;
  for (int16_t place = 1; place < INT16_MAX; ++place) {
    HParamBlockRec block = {};
    block.fileParam.ioNamePtr = name;
    block.fileParam.ioVRefNum = folder.vRefNum;
    block.fileParam.ioDirID = folder.dirID;
    block.fileParam.ioFDirIndex = place;
    if (PBHGetFInfo(&block, 0) != noErr)
      return;
    if (name[0] <= LM_MAX_STYLE_NAME && ReadBytes(folder, name, most, content) &&
        BeginsAsStyle(content))
      visit(TB_StdString(name), content);
  }
}

// Of the file that holds the default style, if there is one.
std::string DefaultName() {
  Str255 name;
  GetIndString(name, DEFAULT_STYLE_NAME, 1);
  LM_style_istream stream;
  stream.Open(name);
  return TB_StdString(name);
}

bool Decode(const FileBytes& content, LM_style& style, std::string& why) {
  why.clear();
  return LM_DecodeStyle(content.bytes, content.size, style, why);
}

} // namespace

std::vector<LM_listed_style> LM_ListStyles() {
  std::vector<LM_listed_style> styles;
  ForEachStyle(sizeof FileBytes::bytes, [&](std::string name, const FileBytes& content) {
    LM_listed_style listed = {};
    listed.name = std::move(name);
    listed.loads = Decode(content, listed.style, listed.why);
    styles.push_back(std::move(listed));
  });
  const std::string first = DefaultName();
  std::stable_partition(styles.begin(), styles.end(),
                        [&](const LM_listed_style& listed) { return listed.name == first; });
  return styles;
}

std::vector<std::string> LM_StyleNames() {
  std::vector<std::string> names;
  ForEachStyle(IDENTIFYING_BYTES,
               [&](std::string name, const FileBytes&) { names.push_back(std::move(name)); });
  return names;
}

bool LM_ReadLibraryStyle(std::string_view name, LM_style& style, std::string& why) {
  LM_style_place folder = {};
  const OSErr found = LM_FindStyleFolder(&folder.vRefNum, &folder.dirID);
  if (found == memFullErr)
    throw std::bad_alloc();
  if (found != noErr) {
    why = "There is no style folder.";
    return false;
  }
  TB_Str255 file = TB_PString(name);
  TB_CutPString(file.bytes, LM_MAX_STYLE_NAME);
  FileBytes content;
  if (LM_FindStyleName(folder.vRefNum, folder.dirID, file.bytes) != noErr ||
      !ReadBytes(folder, file, sizeof content.bytes, content)) {
    why = "There is no style “" + std::string(name) + "”.";
    return false;
  }
  std::string reason;
  if (!Decode(content, style, reason)) {
    why = "The style “" + std::string(name) + "” cannot be used: " + reason;
    return false;
  }
  why = reason;
  return true;
}
