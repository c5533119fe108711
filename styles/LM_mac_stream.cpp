#include "LM_mac_stream.h"

#include <cstring>

#include "LM_globals.h"
#include "LM_style_layout.h"
#include "LM_style_lengths.h"
#include "LM_style_place.h"
#include "LM_style_settings.h"
#include "MacFiles.h"

namespace {

LM_bool CloseFile(int16_t& fileReference, LM_bool& isOpen) {
  if (isOpen == 0)
    return 0;
  isOpen = 0;
  return FSClose(fileReference) == noErr ? 1 : 0;
}

} // namespace

LM_bool LM_style_ostream::Open(StringPtr name) {
  LM_style_place folder = {};
  if (_isOpen != 0 || !LM_FindStyle(folder, name) ||
      HCreate(folder.vRefNum, folder.dirID, name, LM_STYLE_CREATOR, LM_STYLE_FILE_TYPE) != noErr ||
      HOpen(folder.vRefNum, folder.dirID, name, fsRdWrPerm, &_fileReference) != noErr)
    return 0;
  _isOpen = 1;
  if (WriteU16(LM_STYLE_SIGNATURE) != 0 && _WriteHeader() != 0)
    return 1;
  Close();
  return 0;
}

LM_bool LM_style_ostream::Close() {
  return CloseFile(_fileReference, _isOpen);
}

int32_t LM_style_ostream::_WriteBytes(int32_t count, const uint8_t* bytes) {
  if (_isOpen == 0 || FSWrite(_fileReference, &count, bytes) != noErr)
    return -1;
  return count;
}

LM_bool LM_style_ostream::_WriteHeader() {
  return WriteU32(LM_STYLE_MAGIC);
}

LM_bool LM_style_ostream::_WriteBigEndian(uint32_t value, int bytes) {
  uint8_t buffer[4];
  for (int i = 0; i < bytes; ++i)
    buffer[i] = static_cast<uint8_t>(value >> (8 * (bytes - 1 - i)));
  return _WriteBytes(bytes, buffer) == bytes ? 1 : 0;
}

LM_bool LM_style_istream::Open(StringPtr name) {
  LM_style_place folder = {};
  if (_isOpen != 0 || !LM_FindStyle(folder, name) ||
      HOpen(folder.vRefNum, folder.dirID, name, fsRdPerm, &_fileReference) != noErr)
    return 0;
  _isOpen = 1;
  uint16_t signature = 0;
  if (ReadU16(signature) != 0 && signature == LM_STYLE_SIGNATURE && _ReadHeader() != 0)
    return 1;
  Close();
  return 0;
}

LM_bool LM_style_istream::Close() {
  return CloseFile(_fileReference, _isOpen);
}

int32_t LM_style_istream::_ReadBytes(int32_t count, uint8_t* bytes) {
  if (_isOpen == 0 || FSRead(_fileReference, &count, bytes) != noErr)
    return -1;
  return count;
}

LM_bool LM_style_istream::_ReadHeader() {
  uint32_t magic = 0;
  return ReadU32(magic) != 0 && magic == LM_STYLE_MAGIC ? 1 : 0;
}

LM_bool LM_globals::Write(LM_style_ostream& stream) const {
  const LM_style style = LM_StyleOfSettings(*this);
  const auto write = [&](const char*, const auto& value, LM_field) {
    return stream.Write(LM_StoredField(value)) != 0;
  };
  if (!LM_VisitStyleHeader(style, write))
    return 0;
  for (int i = 0; i < style.lightsRead; ++i) {
    if (!LM_VisitStyleLight(style.lights[i], write))
      return 0;
  }
  return 1;
}

LM_bool LM_globals::Read(LM_style_istream& stream) {
  LM_style style = {};
  const auto read = [&](const char*, auto& value, LM_field) {
    auto stored = LM_StoredField(value);
    const bool isRead = stream.Read(stored) != 0;
    value = stored;
    return isRead;
  };
  if (!LM_VisitStyleHeader(style, read) || style.version != LM_STYLE_VERSION)
    return 0;
  while (style.lightsRead < style.numLights && style.lightsRead < LM_MAX_LIGHTS) {
    if (!LM_VisitStyleLight(style.lights[style.lightsRead], read))
      break;
    ++style.lightsRead;
  }
  return LM_ApplyStyle(style, *this) ? 1 : 0;
}

LM_bool LM_SaveStyle(StringPtr name, LM_globals* globals) {
  LM_style_ostream stream;
  return stream.Open(name) != 0 && globals->Write(stream) != 0 ? stream.Close() : 0;
}

LM_bool LM_LoadStyle(StringPtr name, LM_globals* globals) {
  LM_style_istream stream;
  return stream.Open(name) != 0 && globals->Read(stream) != 0 ? stream.Close() : 0;
}

LM_bool LM_DeleteStyle(StringPtr name) {
  return LM_style_ostream::Erase(name);
}

void LM_PStringCopy(StringPtr dest, ConstStr255Param source) {
  std::memmove(dest, source, static_cast<size_t>(source[0]) + 1);
}
