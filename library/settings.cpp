#include "settings.h"

#include "guard.h"
#include "small_file.h"

#include "LM_gallery.h"
#include "LM_style_bytes.h"
#include "LM_style_fields.h"
#include "LM_style_json.h"

#include <cstring>
#include <memory>
#include <string_view>
#include <vector>

namespace {

using limn::CallFailure;
using limn::Guard;
using limn::NeedPointer;
using SettingsPointer = std::unique_ptr<limn_settings>;

// Makes settings by read(style, why); `name` stands before what is wrong, unless it is empty.
template <class Read> limn_settings* NewSettings(const std::string& name, Read read) {
  auto settings = std::make_unique<limn_settings>();
  if (!read(settings->style, settings->warning))
    throw CallFailure{LIMN_BAD_STYLE, (name.empty() ? "" : name + ": ") + settings->warning};
  return settings.release();
}

limn_settings* SettingsOfBytes(const std::string& name, const uint8_t* bytes, size_t size) {
  return NewSettings(name, [&](LM_style& style, std::string& why) {
    return LM_StyleFromBytes(bytes, size, style, why);
  });
}

limn_settings* SettingsOfName(const std::string& name) {
  return NewSettings(name, [&](LM_style& style, std::string& why) {
    why = "there is no such style";
    if (!LM_BundledStyle(name, style))
      return false;
    why.clear();
    return true;
  });
}

} // namespace

limn_settings* limn_settings_new(limn_error* error) {
  limn_settings* settings = nullptr;
  Guard(error, [&] { settings = SettingsOfName("Default"); });
  return settings;
}

limn_settings* limn_settings_load(const char* path, limn_error* error) {
  limn_settings* settings = nullptr;
  Guard(error, [&] {
    NeedPointer(path, "path");
    const std::vector<uint8_t> bytes = limn::ReadSmallFile(path, LM_LONGEST_STYLE_FILE);
    settings = SettingsOfBytes(path, bytes.data(), bytes.size());
  });
  return settings;
}

limn_settings* limn_settings_from_memory(const void* bytes, size_t size, limn_error* error) {
  limn_settings* settings = nullptr;
  Guard(error, [&] {
    NeedPointer(bytes, "bytes");
    if (size > LM_LONGEST_STYLE_FILE)
      throw CallFailure{LIMN_BAD_STYLE,
                        "it is longer than " + std::to_string(LM_LONGEST_STYLE_FILE) + " bytes"};
    settings = SettingsOfBytes("", static_cast<const uint8_t*>(bytes), size);
  });
  return settings;
}

limn_settings* limn_settings_from_json(const char* text, limn_error* error) {
  limn_settings* settings = nullptr;
  Guard(error, [&] {
    NeedPointer(text, "text");
    settings = NewSettings(
        "", [&](LM_style& style, std::string& why) { return LM_StyleFromJson(text, style, why); });
  });
  return settings;
}

limn_settings* limn_settings_bundled(const char* name, limn_error* error) {
  limn_settings* settings = nullptr;
  Guard(error, [&] {
    NeedPointer(name, "name");
    settings = SettingsOfName(name);
  });
  return settings;
}

limn_settings* limn_settings_copy(const limn_settings* settings, limn_error* error) {
  limn_settings* copy = nullptr;
  Guard(error, [&] {
    NeedPointer(settings, "settings");
    copy = new limn_settings(*settings);
  });
  return copy;
}

void limn_settings_free(limn_settings* settings) {
  delete settings;
}

limn_result limn_settings_set(limn_settings* settings, const char* key, const char* value,
                              limn_error* error) {
  return Guard(error, [&] {
    NeedPointer(settings, "settings");
    NeedPointer(key, "key");
    NeedPointer(value, "value");
    LM_style changed = settings->style;
    std::string why;
    if (!LM_SetStyleField(changed, key, value, why))
      throw CallFailure{LIMN_BAD_ARGUMENT, std::string(key) + ": " + why};
    settings->style = changed;
  });
}

size_t limn_settings_json(const limn_settings* settings, char* buffer, size_t room) {
  size_t length = 0;
  Guard(nullptr, [&] {
    NeedPointer(settings, "settings");
    length = limn::CopyText(LM_StyleToJson(settings->style), buffer, room);
  });
  return length;
}

const char* limn_settings_warning(const limn_settings* settings) {
  return settings == nullptr ? "" : settings->warning.c_str();
}

size_t limn_bundled_name(size_t index, char* buffer, size_t room) {
  size_t length = 0;
  Guard(nullptr, [&] {
    const std::vector<std::string> names = LM_BundledStyleNames();
    if (index < names.size())
      length = limn::CopyText(names[index], buffer, room);
  });
  return length;
}
