// Files that are written under a hidden name before they get their own. Private to the styles.
#ifndef LM_STYLE_TEMPORARY_H
#define LM_STYLE_TEMPORARY_H

#include <string_view>

#include "MacStrings.h"

// A folder, as the File Manager names it.
struct LM_style_place {
  int16_t vRefNum;
  int32_t dirID;
};

// Keeps a folder from being swept, from before a temporary file is made until it has its own name.
// Where the file system has no locks, nothing is ever swept either.
class LM_folder_use {
public:
  explicit LM_folder_use(const LM_style_place& folder);
  ~LM_folder_use();
  LM_folder_use(const LM_folder_use&) = delete;
  LM_folder_use& operator=(const LM_folder_use&) = delete;
  // Brings the folder's new names to the disk, as far as the file system can: after a crash a file
  // that was given its name before would else lie there as a temporary one, and be swept.
  void Flush() const noexcept;

private:
  int _descriptor;
};

// A hidden name that nothing else has, in a folder in use.
TB_Str255 LM_TemporaryName();

// Removes the temporary files that killed processes left behind. Leaves the folder alone while
// anybody writes to it: a later call finds them too.
void LM_SweepTemporaries(const LM_style_place& folder);

// Writes a new file and brings its content to the disk. A failure leaves no file behind.
OSErr LM_WriteNewFile(const LM_style_place& folder, ConstStr255Param name, std::string_view bytes);

#endif
