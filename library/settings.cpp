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
using limn::GuardedMade;
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
  return GuardedMade<limn_settings*>(error, [&] { return SettingsOfName("Default"); });
}

limn_settings* limn_settings_load(const char* path, limn_error* error) {
  return GuardedMade<limn_settings*>(error, [&] {
    NeedPointer(path, "path");
    const std::vector<uint8_t> bytes = limn::ReadSmallFile(path, LM_LONGEST_STYLE_FILE);
    return SettingsOfBytes(path, bytes.data(), bytes.size());
  });
}

limn_settings* limn_settings_from_memory(const void* bytes, size_t size, limn_error* error) {
  return GuardedMade<limn_settings*>(error, [&] {
    NeedPointer(bytes, "bytes");
    if (size > LM_LONGEST_STYLE_FILE)
      throw CallFailure{LIMN_BAD_STYLE,
                        "it is longer than " + std::to_string(LM_LONGEST_STYLE_FILE) + " bytes"};
    return SettingsOfBytes("", static_cast<const uint8_t*>(bytes), size);
  });
}

limn_settings* limn_settings_from_json(const char* text, limn_error* error) {
  return GuardedMade<limn_settings*>(error, [&] {
    NeedPointer(text, "text");
    return NewSettings(
        "", [&](LM_style& style, std::string& why) { return LM_StyleFromJson(text, style, why); });
  });
}

limn_settings* limn_settings_bundled(const char* name, limn_error* error) {
  return GuardedMade<limn_settings*>(error, [&] {
    NeedPointer(name, "name");
    return SettingsOfName(name);
  });
}

limn_settings* limn_settings_copy(const limn_settings* settings, limn_error* error) {
  return GuardedMade<limn_settings*>(error, [&] {
    NeedPointer(settings, "settings");
    return new limn_settings(*settings);
  });
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
  return GuardedMade<size_t>(nullptr, [&] {
    NeedPointer(settings, "settings");
    return limn::CopyText(LM_StyleToJson(settings->style), buffer, room);
  });
}

const char* limn_settings_warning(const limn_settings* settings) {
  return settings == nullptr ? "" : settings->warning.c_str();
}

size_t limn_bundled_name(size_t index, char* buffer, size_t room) {
  return GuardedMade<size_t>(nullptr, [&] {
    const std::vector<std::string> names = LM_BundledStyleNames();
    return index < names.size() ? limn::CopyText(names[index], buffer, room) : 0;
  });
}
