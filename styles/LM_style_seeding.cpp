#include "LM_style_seeding.h"

#include <algorithm>
#include <sys/stat.h>
#include <vector>

#include "LM_gallery.h"
#include "LM_mac_stream.h"
#include "LM_style_codec.h"
#include "LM_style_place.h"
#include "MacFiles.h"

namespace {

// The names of the styles written so far, one a line.
constexpr std::string_view MEMORY = "bundled-styles";
constexpr int32_t LARGEST_MEMORY = 1 << 20;

// The names known so far; none where there is no such file. A failure tells nothing about what the
// user has deleted.
OSErr ReadMemory(const LM_style_place& library, std::string& text) {
  int16_t file = 0;
  OSErr result = HOpen(library.vRefNum, library.dirID, TB_PString(MEMORY), fsRdPerm, &file);
  if (result != noErr)
    return result == fnfErr ? noErr : result;
  struct Closing {
    int16_t file;
    ~Closing() { FSClose(file); }
  } const closing{file}; // also when there is no memory for the text
  int32_t count = 0;
  result = GetEOF(file, &count);
  if (result == noErr) {
    text.resize(static_cast<size_t>(std::clamp(count, 0, LARGEST_MEMORY)));
    count = static_cast<int32_t>(text.size());
    result = FSRead(file, &count, text.data());
    text.resize(static_cast<size_t>(count));
  }
  return result == eofErr ? noErr : result;
}

std::vector<std::string> Lines(std::string_view text) {
  std::vector<std::string> lines;
  while (!text.empty()) {
    const size_t end = std::min(text.find('\n'), text.size());
    if (end > 0)
      lines.emplace_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return lines;
}

// True when the style is there afterwards, written now or a file of the user's own.
bool Seed(const LM_style_place& styles, const std::string& name) {
  LM_style style = {};
  if (!LM_BundledStyle(name, style))
    return false;
  TB_Str255 file = TB_PString(name);
  const OSErr found = LM_FindStyleName(styles.vRefNum, styles.dirID, file.bytes);
  if (found != fnfErr)
    return found == noErr;
  uint8_t bytes[LM_STYLE_MAX_BYTES];
  const size_t size = LM_EncodeStyle(style, bytes);
  const std::string_view all(reinterpret_cast<const char*>(bytes), size);
  if (LM_WriteStyleFile(styles, file, all, limn::Existing::Keep))
    return true;
  struct stat status {};
  return lstat(TB_PathOf(styles.vRefNum, styles.dirID, file).c_str(), &status) == 0;
}

bool Remember(const LM_style_place& library, const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names)
    text += name + "\n";
  return LM_WriteStyleFile(library, TB_PString(MEMORY), text, limn::Existing::Replace);
}

} // namespace

std::string LM_SeedStyles(const LM_style_place& library, const LM_style_place& styles) {
  std::string text;
  if (ReadMemory(library, text) != noErr)
    return "The names of the styles added to the style folder could not be read.";
  std::vector<std::string> known = Lines(text);
  const size_t before = known.size();
  std::string why;
  for (const std::string& name : LM_BundledStyleNames()) {
    if (std::find(known.begin(), known.end(), name) != known.end())
      continue;
    if (Seed(styles, name))
      known.push_back(name);
    else
      why = "The style “" + name + "” could not be added to the style folder.";
  }
  if (known.size() == before)
    return why;
  if (!Remember(library, known))
    why = "The styles added to the style folder could not be remembered.";
  return why;
}
