// A style library in a test's own folder, and settings to save there. Base: a fixture whose
// `folder` is that folder.
#pragma once

#include "LM_globals.h"
#include "LM_mac_stream.h"
#include "LM_style_codec.h"
#include "LM_style_fields.h"
#include "LM_style_library.h"
#include "LimnResources.h"
#include "MacResources.h"
#include "MacStrings.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>

inline std::string StyleBytes(const LM_style& style) {
  uint8_t bytes[LM_STYLE_MAX_BYTES];
  const size_t size = LM_EncodeStyle(style, bytes);
  return {reinterpret_cast<const char*>(bytes), size};
}

// The file of a style that has this gloss and so many lights.
inline std::string StyleBytes(int16_t gloss, uint16_t lights = 1) {
  LM_style style = LM_NewStyle();
  style.gloss = gloss;
  style.numLights = style.lightsRead = lights;
  for (int i = 0; i < lights; ++i)
    style.lights[i] = LM_NewStyleLight();
  return StyleBytes(style);
}

template <class Base> class StyleFolder : public Base {
protected:
  void SetUp() override {
    Base::SetUp();
    TB_UseResources(LM_RESOURCES, LM_RESOURCES_COUNT);
    setenv("XDG_DATA_HOME", this->folder.c_str(), 1);
    settings = LM_NewGlobals();
    settings->Default();
  }
  void TearDown() override {
    LM_DestroyGlobals(settings);
    Base::TearDown();
  }
  // Uses the library, which must work without a remark.
  static void Use() {
    std::string why;
    ASSERT_TRUE(LM_UseStyleLibrary(why) && why.empty()) << why;
  }
  std::filesystem::path Style(const std::string& name) const {
    return this->folder / "limn" / "Lighting Styles" / name;
  }
  std::string Bytes(const std::string& name) const {
    std::ifstream file(Style(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  void Write(const std::string& name, const std::string& bytes) const {
    std::ofstream(Style(name), std::ios::binary) << bytes;
  }
  // Saves the settings over the style.
  bool Replace(const std::string& name) const {
    TB_Str255 text = TB_PString(name);
    return LM_ReplaceStyle(text.bytes, settings) != 0;
  }
  LM_globals* settings = nullptr;
};
