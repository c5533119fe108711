// The user's library of styles: where the style folder lies, what it begins with, and the
// operations that need more than one file at a time.
//
// The library is the folder `limn` in the user's data folder (XDG_DATA_HOME, or ~/.local/share).
// It becomes the default directory, so that the style folder lies in it. Bundled styles are written
// into the style folder once; the names written are kept in a file beside it, so that a style
// that the user deletes stays deleted, and a later version adds only what is new.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "LM_export.h"
#include "LM_style.h"
#include "MacTypes.h"

class LM_globals;

// Sets the library up, for this process. False when there can be none: `why` is a sentence that
// names the folder, and from then on there is no style folder, until a later call succeeds. With
// true, `why` names bundled styles that could not be written, or is empty. Safe beside other
// processes that do the same, and against being killed at any moment.
LM_EXPORT bool LM_UseStyleLibrary(std::string& why);

// True after LM_UseStyleLibrary has failed.
bool LM_StyleLibraryIsMissing();

// One file of the style folder that begins as a style does.
struct LM_listed_style {
  std::string name;
  bool loads;      // it would load
  std::string why; // what is wrong with it, or was passed over; else empty
  LM_style style;  // when it loads
};

// The styles of the folder, the default one first, the others in the folder's order. Reads each
// file once.
std::vector<LM_listed_style> LM_ListStyles();

// Names of the files of the folder that begin as a style does, in the folder's order: what
// LM_style_istream::IndexedInfo answers for 0, 1, 2 …, in one walk.
LM_EXPORT std::vector<std::string> LM_StyleNames();

// Reads the style that the name stands for. False with a sentence that names the style. Throws
// std::bad_alloc.
bool LM_ReadLibraryStyle(std::string_view name, LM_style& style, std::string& why);

// Replaces a style of the folder by the settings. At every moment, also after a crash, the name
// stands for the old style or the complete new one. A file of that name that is no style is never
// touched: false then, and when anything fails.
LM_EXPORT LM_bool LM_ReplaceStyle(StringPtr name, LM_globals* globals);

// Adds a style to the folder: the complete one, or none. False when the name is taken or anything
// fails.
LM_EXPORT LM_bool LM_AddStyle(StringPtr name, LM_globals* globals);
