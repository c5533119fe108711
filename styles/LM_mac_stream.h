// Style files as streams in the style folder, and the folder itself.
//
// Names are length-prefixed UTF-8. Every operation that touches a file first cuts a name of 32
// bytes or more to 31 in place, never within a character. Names that differ by case and marks alone
// stand for the same style, as the style menu compares them: a name becomes, in place, that of the
// file it stands for. A folder that holds several such files, written by others, has them told
// apart: there each stands for itself. Nothing here shows a message.
#pragma once

#include <concepts>

#include "LM_export.h"
#include "LM_types.h"

class LM_globals;

// File type and creator of style files, where the platform keeps them.
constexpr OSType LM_STYLE_FILE_TYPE = CV_FOUR_CHARS('l', 'm', 'b', 's');
constexpr OSType LM_STYLE_CREATOR = CV_FOUR_CHARS('?', '?', '?', '?');
constexpr unsigned LM_MAX_STYLE_NAME = 31;

// Finds the style folder, in the default directory, and creates it if it is not there.
LM_bool LM_GetStyleFolder(int16_t* vRefNum, int32_t* dirID);

// Writes one style file. Open, write, Close; one file in a stream's life at a time.
class LM_style_ostream {
public:
  LM_style_ostream() = default;
  LM_style_ostream(const LM_style_ostream&) = delete;
  LM_style_ostream& operator=(const LM_style_ostream&) = delete;
  ~LM_style_ostream() { Close(); }

  // Creates the file and writes what identifies it. Fails when the name stands for a file; a file
  // created before a failed write stays.
  LM_bool Open(StringPtr name);
  // True when the stream was open and closing succeeded, delayed writes included.
  LM_bool Close();

  // Each writes its bytes most significant first; true when all were written.
  LM_bool WriteU8(uint8_t value) { return Write(value); }
  LM_bool WriteU16(uint16_t value) { return Write(value); }
  LM_bool WriteU32(uint32_t value) { return Write(value); }
  LM_bool WriteS8(int8_t value) { return Write(value); }
  LM_bool WriteS16(int16_t value) { return Write(value); }
  LM_bool WriteS32(int32_t value) { return Write(value); }
  template <std::integral Integer> LM_bool Write(Integer value) {
    return _WriteBigEndian(static_cast<uint32_t>(value), sizeof(Integer));
  }

  // Removes the style file of exactly that name: what goes for good is not guessed.
  static LM_bool Erase(StringPtr name);
  // True when the file is there and opening it for writing is not permitted.
  LM_EXPORT static LM_bool IsLocked(StringPtr name);

private:
  int32_t _WriteBytes(int32_t count, const uint8_t* bytes);
  LM_bool _WriteHeader();
  LM_bool _WriteBigEndian(uint32_t value, int bytes);

  int16_t _fileReference = 0;
  LM_bool _isOpen = 0;
};

// Reads one style file.
class LM_style_istream {
public:
  LM_style_istream() = default;
  LM_style_istream(const LM_style_istream&) = delete;
  LM_style_istream& operator=(const LM_style_istream&) = delete;
  ~LM_style_istream() { Close(); }

  // Opens the file and checks what identifies it, so that other files of the folder never open.
  LM_EXPORT LM_bool Open(StringPtr name);
  LM_EXPORT LM_bool Close();

  // Each reads its bytes most significant first; true when all were there. The value is left alone
  // otherwise.
  LM_bool ReadU8(uint8_t& value) { return Read(value); }
  LM_bool ReadU16(uint16_t& value) { return Read(value); }
  LM_bool ReadU32(uint32_t& value) { return Read(value); }
  LM_bool ReadS8(int8_t& value) { return Read(value); }
  LM_bool ReadS16(int16_t& value) { return Read(value); }
  LM_bool ReadS32(int32_t& value) { return Read(value); }
  template <std::integral Integer> LM_bool Read(Integer& value) {
    uint8_t bytes[sizeof(Integer)];
    if (_ReadBytes(sizeof bytes, bytes) != static_cast<int32_t>(sizeof bytes))
      return 0;
    uint32_t bits = 0;
    for (const uint8_t byte : bytes)
      bits = bits << 8 | byte;
    value = static_cast<Integer>(bits);
    return 1;
  }

  // True when a file of that name can be read, style file or not.
  LM_EXPORT static LM_bool Exists(StringPtr name);
  // Name of the style file number `index`, from 0, in the folder's own order. False past the last
  // one, and `name` empty then. A negative index is true and leaves the name alone.
  static LM_bool IndexedInfo(int16_t index, StringPtr name);

private:
  int32_t _ReadBytes(int32_t count, uint8_t* bytes);
  LM_bool _ReadHeader();

  int16_t _fileReference = 0;
  LM_bool _isOpen = 0;
};

// Writes the settings to a new file; false when it exists or anything fails. A partly written file
// stays.
LM_bool LM_SaveStyle(StringPtr name, LM_globals* globals);
// Replaces the settings with a style's; false when it does not open or holds no whole light, and
// the settings are then as before.
LM_EXPORT LM_bool LM_LoadStyle(StringPtr name, LM_globals* globals);
LM_EXPORT LM_bool LM_DeleteStyle(StringPtr name);

// Copies the length byte and that many characters.
LM_EXPORT void LM_PStringCopy(StringPtr dest, ConstStr255Param source);
