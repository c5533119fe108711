// A style, as Python has it.
#pragma once

#include <limn.h>
#include <memory>
#include <pybind11/pybind11.h>
#include <string>

// Changed by being replaced, so that lighting on another thread keeps what it began with.
class Settings {
public:
  static Settings New();
  static Settings Load(const std::string& path);
  static Settings FromMemory(const std::string& bytes); // binary or JSON
  static Settings Bundled(const std::string& name);

  void Set(const std::string& key, const std::string& value);
  std::string Json() const;
  std::string Warning() const { return limn_settings_warning(_settings.get()); }
  std::shared_ptr<const limn_settings> Shared() const { return _settings; }

private:
  explicit Settings(limn_settings* owned) : _settings(owned, limn_settings_free) {}
  static Settings _Made(limn_settings* owned, const limn_error& error);

  std::shared_ptr<const limn_settings> _settings;
};

// The names of the styles that the library carries.
pybind11::list StyleNames();
