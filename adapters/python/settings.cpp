#include "settings.h"

#include "errors.h"

#include <algorithm>
#include <new>

namespace {

// C ends a text at its first zero, and would read another name than the caller wrote.
const char* TextOf(const char* name, const std::string& text) {
  if (text.find('\0') != std::string::npos)
    Refuse(std::string(name) + ": it holds a zero character");
  return text.c_str();
}

// The text that a function of the library writes into a buffer, whose length it tells first.
template <class Write> std::string Written(Write write) {
  const size_t length = write(nullptr, size_t{0});
  if (length == 0)
    throw std::bad_alloc();
  std::string text(length + 1, '\0');
  text.resize(std::min(write(text.data(), text.size()), length));
  return text;
}

} // namespace

Settings Settings::_Made(limn_settings* owned, const limn_error& error) {
  if (owned == nullptr)
    Throw(error);
  return Settings(owned);
}

Settings Settings::New() {
  limn_error error;
  return _Made(limn_settings_new(&error), error);
}

Settings Settings::Load(const std::string& path) {
  limn_error error;
  return _Made(limn_settings_load(TextOf("path", path), &error), error);
}

Settings Settings::FromMemory(const std::string& bytes) {
  limn_error error;
  return _Made(limn_settings_from_memory(bytes.data(), bytes.size(), &error), error);
}

Settings Settings::Bundled(const std::string& name) {
  limn_error error;
  return _Made(limn_settings_bundled(TextOf("name", name), &error), error);
}

void Settings::Set(const std::string& key, const std::string& value) {
  limn_error error;
  const Settings changed = _Made(limn_settings_copy(_settings.get(), &error), error);
  // Nobody else has the copy yet.
  auto* const own = const_cast<limn_settings*>(changed._settings.get());
  if (limn_settings_set(own, TextOf("key", key), TextOf("value", value), &error) != LIMN_OK)
    Throw(error);
  _settings = changed._settings;
}

std::string Settings::Json() const {
  return Written([this](char* buffer, size_t room) {
    return limn_settings_json(_settings.get(), buffer, room);
  });
}

pybind11::list StyleNames() {
  pybind11::list names;
  for (size_t i = 0; limn_bundled_name(i, nullptr, 0) > 0; ++i)
    names.append(
        Written([i](char* buffer, size_t room) { return limn_bundled_name(i, buffer, room); }));
  return names;
}
