#include "LM_style_seeding.h"

#include <algorithm>
#include <sstream>
#include <sys/stat.h>
#include <vector>

#include "LM_gallery.h"
#include "LM_style_place.h"
#include "MacFiles.h"

namespace {

// The names of the styles written so far, one a line.
constexpr std::string_view MEMORY = "bundled-styles";
constexpr size_t LARGEST_MEMORY = 1 << 20;

// True when the style is there afterwards, written now or a file of the user's own.
bool Seed(const LM_style_place& styles, const std::string& name) {
  LM_style style = {};
  if (!LM_BundledStyle(name, style))
    return false;
  TB_Str255 file = TB_PString(name);
  const OSErr found = LM_FindStyleName(styles, file.bytes);
  if (found != fnfErr)
    return found == noErr;
  if (LM_WriteStyleFile(styles, file, style, limn::Existing::Keep))
    return true;
  struct stat status {};
  return lstat(TB_PathOf(styles.vRefNum, styles.dirID, file).c_str(), &status) == 0;
}

} // namespace

std::string LM_SeedStyles(const LM_style_place& library, const LM_style_place& styles) {
  std::string text;
  // A failure tells nothing about what the user has deleted.
  const OSErr read = LM_ReadStyleFile(library, TB_PString(MEMORY), LARGEST_MEMORY, text);
  if (read != noErr && read != fnfErr)
    return "The names of the styles added to the style folder could not be read.";
  std::vector<std::string> known;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);)
    if (!line.empty())
      known.push_back(line);
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
  text.clear();
  for (const std::string& name : known)
    text += name + "\n";
  if (!LM_WriteStyleFile(library, TB_PString(MEMORY), text, limn::Existing::Replace))
    why = "The styles added to the style folder could not be remembered.";
  return why;
}
