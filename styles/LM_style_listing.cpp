// Listing the style folder in one walk, and reading a style by its name.
#include <algorithm>
#include <new>

#include "LM_mac_stream.h"
#include "LM_sentences.h"
#include "LM_style_codec.h"
#include "LM_style_library.h"
#include "LM_style_place.h"
#include "MacResources.h"

namespace {

constexpr int16_t DEFAULT_STYLE_NAME = 141;

// The file of a style with all its lights, and a byte more.
constexpr size_t LONGEST_READ = LM_STYLE_MAX_BYTES + 1;
// How a style's file begins.
constexpr std::string_view START = "BBCVLM";
static_assert(LM_STYLE_SIGNATURE == 0x4242 && LM_STYLE_MAGIC == CV_FOUR_CHARS('C', 'V', 'L', 'M'));

// Calls visit(name, content) for every file of the folder that begins as a style does, until it
// answers false. most: bytes of content that are wanted. Longer names than the style menu uses lead
// to no file there.
template <class Visit> void ForEachStyle(size_t most, Visit visit) {
  LM_style_place folder = {};
  if (LM_FindStyleFolder(folder) != noErr)
    return;
  Str255 name;
  std::string content;
  for (int16_t place = 1; place < INT16_MAX && LM_FindFile(folder, name, place) == noErr; ++place)
    if (name[0] <= LM_MAX_STYLE_NAME && LM_ReadStyleFile(folder, name, most, content) == noErr &&
        content.starts_with(START) && !visit(name, content))
      return;
}

// Of the file that holds the default style, if there is one.
std::string DefaultName() {
  Str255 name;
  GetIndString(name, DEFAULT_STYLE_NAME, 1);
  LM_style_istream stream;
  stream.Open(name);
  return TB_StdString(name);
}

bool Decode(const std::string& content, LM_style& style, std::string& why) {
  return LM_DecodeStyle(reinterpret_cast<const uint8_t*>(content.data()), content.size(), style,
                        why);
}

} // namespace

std::vector<LM_listed_style> LM_ListStyles() {
  std::vector<LM_listed_style> styles;
  ForEachStyle(LONGEST_READ, [&](ConstStr255Param name, const std::string& content) {
    LM_listed_style& listed = styles.emplace_back();
    listed.name = TB_StdString(name);
    listed.loads = Decode(content, listed.style, listed.why);
    return true;
  });
  const std::string first = DefaultName();
  std::stable_partition(styles.begin(), styles.end(),
                        [&](const LM_listed_style& listed) { return listed.name == first; });
  return styles;
}

std::vector<std::string> LM_StyleNames() {
  std::vector<std::string> names;
  ForEachStyle(START.size(), [&](ConstStr255Param name, const std::string&) {
    names.push_back(TB_StdString(name));
    return true;
  });
  return names;
}

LM_bool LM_style_istream::IndexedInfo(int16_t index, StringPtr name) {
  if (index < 0)
    return 1;
  name[0] = 0;
  ForEachStyle(START.size(), [&](ConstStr255Param style, const std::string&) {
    if (index-- == 0)
      LM_PStringCopy(name, style);
    return index >= 0;
  });
  return index < 0 ? 1 : 0;
}

bool LM_ReadLibraryStyle(std::string_view name, LM_style& style, std::string& why) {
  LM_style_place folder = {};
  const OSErr found = LM_FindStyleFolder(folder);
  if (found == memFullErr)
    throw std::bad_alloc();
  if (found != noErr)
    return LM_Fails(why, "There is no style folder.");
  TB_Str255 file = TB_PString(name);
  TB_CutPString(file.bytes, LM_MAX_STYLE_NAME);
  std::string content;
  if (LM_FindStyleName(folder, file.bytes) != noErr ||
      LM_ReadStyleFile(folder, file, LONGEST_READ, content) != noErr)
    return LM_Fails(why, "There is no style “" + std::string(name) + "”.");
  return Decode(content, style, why) ||
         LM_Fails(why, "The style “" + std::string(name) + "” cannot be used: " + why);
}
